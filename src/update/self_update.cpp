#include "update/self_update.h"

#include <windows.h>

#include <deque>

#include "core/context.h"
#include "core/localization.h"
#include "core/permissions.h"
#include "net/file_hash.h"
#include "net/http_client.h"
#include "net/http_result.h"
#include "net/retry.h"
#include "system/files.h"
#include "system/text.h"
#include "system/threads.h"
#include "ui/message_boxes.h"
#include "ui/taskbar.h"
#include "update/replaced_program.h"
#include "update/update_dialog.h"

// The story starts at the end of this file. Everything that may take long runs on a helping thread, so that the
// dialog's own thread can serve it.

namespace {

struct Update {
  HWND dialog;
  std::wstring file;         // the downloaded program
  std::string md5;           // that it must have
  std::wstring helpAddress;  // where a person gets it
  HttpClient client{app.userAgent, app.cancelRequested.Token()};
  FileHandle held = {};  // of the file, once it is proven
  uint32_t error = 0;    // of the last failure, 0 when there was none or the system had no part in it
};

// Whether the file is the announced one; it is then kept from being changed until it has been put into its place.
bool ProveAndHold(Update& update) {
  bool right = false;
  RunWhileServing(update.dialog, [&] {
    if (const uint32_t error = HoldFile(update.file, update.held, app.cancelRequested.Token())) update.error = error;
    right = update.held && ComputeFileMd5(update.file, nullptr) == update.md5;
  });
  if (!right) update.held.Reset();
  return right;
}

HttpResult Download(Update& update, const std::wstring& url) {
  HttpResult result;
  RunWhileServing(update.dialog, [&, language = ThreadLanguage()] {
    SetThreadLanguage(language);
    result = update.client.DownloadToFile(url, update.file, 0, OnUpdateDownloadProgress);
  });
  return result;
}

HttpResult DownloadThroughOutage(Update& update, const std::wstring& url) {
  Retries retries({.most = kPatience.retries, .mostRepeats = 1});
  HttpResult result = Download(update, url);
  bool again = true;
  while (again && retries.AnotherAfter(result, result.received)) {
    RunWhileServing(update.dialog, [&] { again = retries.Pause(app.cancelRequested.Token()); });
    if (again) result = Download(update, url);
  }
  return result;
}

// The user is asked, and the permissions of the temporary folder are repaired.
bool OfferRepair(const Update& update) {
  const std::wstring text = FormatErrorMessage(ERROR_ACCESS_DENIED, LoadLocalizedString(STR_FIX_PERMISSIONS));
  const std::wstring caption = LoadLocalizedString(STR_UPDATE);
  const TaskbarCall call;
  if (MessageBoxW(update.dialog, text.c_str(), caption.c_str(), MB_YESNO | MB_ICONERROR) != IDYES) return false;
  bool repaired = false;
  RunWhileServing(update.dialog, [&] { repaired = RepairPermissions(); });
  return repaired;
}

bool ObtainFrom(Update& update, const std::wstring& url) {
  ClearUpdateDisplay();
  HttpResult result = DownloadThroughOutage(update, url);
  if (result.error == ERROR_ACCESS_DENIED && OfferRepair(update)) result = DownloadThroughOutage(update, url);
  update.error = result.error;
  return result.received != 0 && ProveAndHold(update);
}

bool ObtainFile(Update& update, std::deque<std::string> urls) {
  // An earlier attempt may have brought it.
  if (FileExistsNonEmpty(update.file) && ProveAndHold(update)) return true;
  for (; !urls.empty(); urls.pop_front()) {
    const std::wstring url = WidenBytes(urls.front());
    if (update.helpAddress.empty()) update.helpAddress = url;
    if (ObtainFrom(update, url)) return true;
  }
  return false;
}

// A running program can be moved, but not overwritten. The new one is complete before the old one goes, so that the
// program is missing for one moment between two renames. Returns 0 or the error, after which the old program is in its
// place again where that can be done.
uint32_t ReplaceProgram(const std::wstring& newFile) {
  constexpr DWORD kFlags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  const std::wstring newProgram = NewProgramPath();
  if (!CopyFileW(newFile.c_str(), newProgram.c_str(), FALSE)) {
    const DWORD error = GetLastError();
    DeleteFileW(newProgram.c_str());
    return error;
  }
  DWORD error = ERROR_SUCCESS;
  if (!MoveFileExW(app.exePath.c_str(), app.backupPath.c_str(), kFlags)) {
    error = GetLastError();
  } else if (!MoveFileExW(newProgram.c_str(), app.exePath.c_str(), kFlags)) {
    error = GetLastError();
    MoveFileExW(app.backupPath.c_str(), app.exePath.c_str(), kFlags);
  }
  if (error != ERROR_SUCCESS) DeleteFileW(newProgram.c_str());
  return error;
}

bool PutIntoPlace(Update& update) {
  ShowUpdateProgress(100);
  ShowUpdateStatus(STR_INSTALLING_UPDATE);
  RunWhileServing(update.dialog, [&] { update.error = ReplaceProgram(update.file); });
  app.windowHold.Release();  // whatever became of it, a close request follows
  return update.error == ERROR_SUCCESS;
}

// Who has closed the window meanwhile doesn't want to see the program again.
void Relaunch() {
  app.restartArgs = L"updated";
  app.restartDropsCommandLine = true;
  app.restartRequested = app.windowHold.CloseAttempts() == 0;
  PostMessageW(app.mainWindow, WM_CLOSE, 0, 0);
}

void GiveUp(const Update& update) {
  PromptDownloadLatest(update.helpAddress, update.error);
  app.lockedByUpdate = false;
  EnableWindow(app.mainWindow, TRUE);
}

}  // namespace

void RunSelfUpdate(const UpdaterInfo& announced) {
  DeleteFileW(app.manifestPath.c_str());  // the next start is to ask anew
  const HWND dialog = CreateUpdateDialog(announced.filesize);
  if (!dialog) return;
  ShowWindow(dialog, SW_SHOW);
  app.lockedByUpdate = true;
  EnableWindow(app.mainWindow, FALSE);
  ShowUpdateStatus(STR_DOWNLOADING_UPDATE);

  Update update{dialog, UpdateFilePath(), announced.md5, WidenBytes(announced.helpURL)};
  if (!ObtainFile(update, announced.urls)) {
    if (!app.cancelRequested) GiveUp(update);
    return;
  }
  // The process must not end between the two steps of the replacement. A window that was closed before is gone.
  if (!app.windowHold.Acquire()) return;
  if (!PutIntoPlace(update)) return GiveUp(update);
  Relaunch();
}
