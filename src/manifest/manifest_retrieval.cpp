#include "manifest/manifest_retrieval.h"

#include "app/context.h"
#include "app/localization.h"
#include "app/message_boxes.h"
#include "app/page_controls.h"
#include "app/replaced_program.h"
#include "app/site.h"
#include "manifest/component_list.h"
#include "manifest/manifest_store.h"
#include "net/http_client.h"
#include "net/network_errors.h"
#include "system/files.h"
#include "system/process.h"
#include "system/text.h"

namespace {

constexpr int64_t kMaxCacheAgeSeconds = 3600;
constexpr DWORD kRetryPauseMs = 1000;

int64_t Ticks(const FILETIME& time) {
  return static_cast<int64_t>(static_cast<uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime);
}

// Seconds since the file was written; 0 when that can't be told.
int64_t FileAgeSeconds(const std::wstring& path) {
  WIN32_FILE_ATTRIBUTE_DATA file;
  if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &file)) return 0;
  FILETIME now;
  GetSystemTimeAsFileTime(&now);
  constexpr int64_t kTicksPerSecond = 10'000'000;
  return (Ticks(now) - Ticks(file.ftLastWriteTime)) / kTicksPerSecond;
}

bool IsCacheFresh() {
  return FileExistsNonEmpty(app.manifestPath) && FileAgeSeconds(app.manifestPath) <= kMaxCacheAgeSeconds;
}

// Fetches once a second while the network is down; the user is told at the first failure, and when it is given up.
bool FetchPersistently() {
  if (FetchManifest()) return true;
  DWORD error = GetLastError();
  ShowManifestError();
  if (!IsRetryableNetworkError(error)) return false;
  do {
    Sleep(kRetryPauseMs);
    if (app.cancelRequested) return false;
    if (FetchManifest()) return true;
    error = GetLastError();
  } while (IsRetryableNetworkError(error));
  ShowManifestError();
  return false;
}

// True when there is something to load, a fresh cache or a document just fetched.
bool ObtainDocument() {
  if (IsCacheFresh()) return true;
  constexpr int kCreatedAfterRepair = 2;
  if (EnsureTempFolder() == kCreatedAfterRepair && IsCacheFresh()) return true;
  return FetchPersistently();
}

void OfferRepairOfCache() {
  const std::wstring question =
      LoadLocalizedString(STR_CANNOT_SAVE_FILE) + L"\n\n" + LoadLocalizedString(STR_FIX_PERMISSIONS);
  const int answer = ShowBox(question, LoadLocalizedString(STR_MANIFEST), MB_YESNO | MB_ICONERROR);
  if (answer == IDYES && RepairPermissions()) SaveManifestCache();
}

HWND InstallButton() {
  const ComponentsPageControls* page = app.componentsPage;
  return page ? page->installButton.Window() : nullptr;
}

// Once the list is filled the user may press Install, which replaces the page: the button to press for the command line
// is therefore taken before.
void LoadAndShow(bool startRequested) {
  const int packages = LoadManifest(false);
  const HWND installButton = InstallButton();
  if (packages > 0) {
    RemoveForgottenCopy();
    PopulateComponentList();
  } else if (app.restartRequested) {
    return;
  }
  if (ManifestCacheSaveFailed()) OfferRepairOfCache();
  if (startRequested && !app.updateInProgress) SendMessageW(installButton, BM_CLICK, 0, 0);
}

}  // namespace

std::wstring BuildManifestUrl() {
  std::wstring url = RepositoryAddress() + L"?l=" + std::to_wstring(app.uiLanguage);
  if (!app.uuid.empty()) url += L"&u=" + WidenBytes(app.uuid);
  if (app.darkMode) url += L"&dt=1";
  if (app.startupWaitMs != 0) url += L"&sd=" + std::to_wstring(app.startupWaitMs);
  return url;
}

bool FetchManifest() {
  manifestBuffer.clear();
  const HttpResult result = HttpClient().GetToStream(BuildManifestUrl(), manifestBuffer);
  SetLastError(result.error);
  // A body that was begun, dropped and then refused counts as received, too.
  return result.received != 0 && !manifestBuffer.empty();
}

DWORD WINAPI ManifestThreadProc(void*) {
  SetThreadLanguage(app.uiLanguage);
  // By this program's own command line; one that another start forwards only changes what Install would install.
  const bool startRequested = !app.installList.Get()->empty();
  if (ObtainDocument()) LoadAndShow(startRequested);
  return 0;
}
