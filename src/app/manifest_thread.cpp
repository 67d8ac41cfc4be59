#include "app/manifest_thread.h"

#include "core/context.h"
#include "core/localization.h"
#include "core/permissions.h"
#include "core/window_messages.h"
#include "manifest/manifest_retrieval.h"
#include "manifest/manifest_store.h"
#include "net/retry.h"
#include "ui/message_boxes.h"
#include "ui/page_controls.h"
#include "update/replaced_program.h"
#include "update/self_update.h"

// The story starts at the end of this file.

namespace {

// Fetches once a second while the network is down; the user is told at the first failure, and when it is given up.
ManifestFetch FetchPersistently() {
  Retries retries{RetryRules{}};
  ManifestFetch fetch = FetchManifest();
  if (fetch.ok || app.cancelRequested) return fetch;
  ShowManifestError(fetch.result.error);
  if (!retries.AnotherAfter(fetch.result, 0)) return fetch;
  do {
    if (!retries.Pause(app.cancelRequested.Token())) return fetch;
    fetch = FetchManifest();
    if (fetch.ok) return fetch;
  } while (retries.AnotherAfter(fetch.result, 0));
  if (!app.cancelRequested) ShowManifestError(fetch.result.error);
  return fetch;
}

// Ok when there is something to load, a fresh cache or a document just fetched.
ManifestFetch ObtainDocument() {
  if (IsManifestCacheFresh()) return {.ok = true};
  if (EnsureTempFolder() == TempFolder::Repaired && IsManifestCacheFresh()) return {.ok = true};
  return FetchPersistently();
}

// The number of packages, or what LoadManifest tells of a document that can't be loaded. An announced program takes the
// place of this one before anything else of the document counts.
int LoadDocument() {
  ManifestDocument document;
  const ManifestKind kind = document.Read();
  if (kind != ManifestKind::Manifest) return static_cast<int>(kind);
  if (const UpdaterInfo* update = document.AnnouncedUpdate()) {
    app.updateInProgress = true;
    RunSelfUpdate(*update);
  }
  return document.Load();
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
// is therefore taken before. A document that can't be loaded may be one that was cut off by `transferError`.
void LoadAndShow(bool startRequested, uint32_t transferError) {
  const int packages = LoadDocument();
  const HWND installButton = InstallButton();
  if (packages > 0) {
    RemoveForgottenCopy();
    SendMessageW(app.mainWindow, kFillComponentListMessage, 0, 0);
  } else {
    if (app.restartRequested) return;
    if (!app.cancelRequested) ShowManifestError(transferError != 0 ? transferError : uint32_t{ERROR_INVALID_DATA});
  }
  if (LastCacheSave() == CacheSave::NotWritable) OfferRepairOfCache();
  if (startRequested && !app.updateInProgress) SendMessageW(installButton, BM_CLICK, 0, 0);
}

}  // namespace

DWORD WINAPI ManifestThreadProc(void*) {
  SetThreadLanguage(app.uiLanguage);
  // By this program's own command line; one that another start forwards only changes what Install would install.
  const bool startRequested = !app.installList.Get()->empty();
  const ManifestFetch document = ObtainDocument();
  if (document.ok) LoadAndShow(startRequested, document.result.error);
  return 0;
}
