#include "core/site.h"

#include "maker.h"

const char kProductVersion[] = ZENDORA_VERSION;

namespace {

std::wstring SiteAddress(const wchar_t* path) { return std::wstring(ZENDORA_SITE_BASE L"/") + path; }

}  // namespace

std::wstring RepositoryAddress() { return SiteAddress(L"play/files/repository.php"); }
std::wstring TelemetryAddress() { return SiteAddress(L"play/files/telemetry.php"); }
std::wstring DownloadPageAddress() { return SiteAddress(L"play/"); }
std::vector<std::wstring> AboutLinks() { return {ZENDORA_ABOUT_LINKS}; }
