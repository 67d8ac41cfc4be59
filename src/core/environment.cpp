#include "core/environment.h"

#include <windows.h>

#include "core/context.h"
#include "core/site.h"
#include "system/modules.h"
#include "system/path_names.h"
#include "system/text.h"

namespace {

constexpr wchar_t kDataFolders[] = L"Zendora\\Installer";

// The high bits of RtlGetNtVersionNumbers' build tell checked from free builds.
constexpr uint32_t kBuildNumberMask = 0x0FFFFFFF;

// Empty when it is longer than the program's paths may be: a cut path would name another file.
std::wstring PathOfExecutable() {
  wchar_t path[kMaxPathLength + 1];
  const DWORD length = GetModuleFileNameW(nullptr, path, ARRAYSIZE(path));
  return length < ARRAYSIZE(path) ? std::wstring(path, length) : std::wstring();
}

std::wstring EnvironmentVariable(const wchar_t* name) {
  wchar_t value[kMaxPathLength + 1];
  const DWORD length = GetEnvironmentVariableW(name, value, ARRAYSIZE(value));
  return length < ARRAYSIZE(value) ? std::wstring(value, length) : std::wstring();
}

std::wstring ManifestBelow(const std::wstring& appDataPath) {
  return JoinPath(JoinPath(appDataPath, kDataFolders), kManifestName);
}

void ProbePaths() {
  app.registryKeyPath = std::wstring(L"SOFTWARE\\") + kProductTitle;
  app.exePath = PathOfExecutable();
  const std::wstring backup = app.exePath + std::wstring(kBackupExtension);
  const bool backupFits = !app.exePath.empty() && backup.size() <= kMaxPathLength;
  app.backupPath = backupFits ? backup : L"";
  app.appDataPath = EnvironmentVariable(L"APPDATA");
  if (ManifestBelow(app.appDataPath).size() > kMaxPathLength) app.appDataPath.clear();
  app.dataDir = JoinPath(app.appDataPath, kDataFolders);
  app.manifestPath = ManifestBelow(app.appDataPath);
}

bool IsWow64() {
  BOOL isWow64 = FALSE;
  return IsWow64Process(GetCurrentProcess(), &isWow64) && isWow64;
}

// Unlike GetVersionExW this one tells the truth whatever the application manifest says.
void AskNtdllForVersion() {
  using GetVersionNumbers = void(WINAPI*)(DWORD * major, DWORD * minor, DWORD * build);
  const auto getVersionNumbers =
      FindFunction<GetVersionNumbers>(GetModuleHandleW(L"ntdll.dll"), "RtlGetNtVersionNumbers");
  if (!getVersionNumbers) return;
  DWORD major = 0, minor = 0, build = 0;
  getVersionNumbers(&major, &minor, &build);
  app.osMajor = major;
  app.osMinor = minor;
  app.osBuild = build & kBuildNumberMask;
}

bool CanWriteMachineSoftware(REGSAM view) {
  RegKey key;
  return RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"SOFTWARE", 0, KEY_WRITE | view, key.Receive()) == ERROR_SUCCESS;
}

std::wstring BuildUserAgent() {
  const wchar_t* const bits = app.isWow64 ? L"64" : L"32";
  return std::wstring(kProductTitle) + L"/" + WidenBytes(kProductVersion) + L" (Windows NT " +
         std::to_wstring(app.osMajor) + L"." + std::to_wstring(app.osMinor) + L"; Win" + bits + L"; x" + bits +
         L"; Build/" + std::to_wstring(app.osBuild) + L")";
}

}  // namespace

void ProbeAdministrator() { app.isAdmin = CanWriteMachineSoftware(KEY_WOW64_32KEY) || CanWriteMachineSoftware(0); }

void ProbeSystemVersion() {
  if (app.osBuild != 0) return;
  AskNtdllForVersion();
  if (app.osBuild != 0) return;
  OSVERSIONINFOW version = {};
  version.dwOSVersionInfoSize = sizeof version;
  if (!GetVersionExW(&version)) return;
  app.osMajor = version.dwMajorVersion;
  app.osMinor = version.dwMinorVersion;
  app.osBuild = version.dwBuildNumber;
}

void ProbeEnvironment() {
  ProbePaths();
  app.isWow64 = IsWow64();
  ProbeSystemVersion();
  app.userAgent = BuildUserAgent();
}
