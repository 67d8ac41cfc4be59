#include "ui/message_boxes.h"

#include "core/context.h"
#include "core/localization.h"
#include "core/permissions.h"
#include "core/site.h"
#include "net/error_text.h"
#include "system/files.h"
#include "system/process.h"
#include "ui/mailbox.h"
#include "ui/taskbar.h"

namespace {

void ShowError(const std::wstring& text) { ShowBox(text, LoadLocalizedString(STR_ERROR), MB_OK | MB_ICONERROR); }

std::wstring ConnectionHint() {
  return LoadLocalizedString(STR_CHECK_CONNECTION) + L"\n\n" + LoadLocalizedString(STR_ANTIVIRUS_HINT);
}

std::wstring ErrorLine(uint32_t error) {
  return LoadLocalizedString(STR_ERROR) + L": " + std::to_wstring(error) + L"\n";
}

// "Error: ..." of an error of the update, with the line for its description even where that is empty.
std::wstring UpdateErrorLines(uint32_t error) {
  if (error == 0) return {};
  return ErrorLine(error) + GetErrorText(error) + L"\n";
}

TempFolder RepairTempFolder(const std::wstring& folder) {
  if (!RepairPermissions()) return TempFolder::Missing;
  const uint32_t error = CreateDirectories(folder);
  if (error == ERROR_SUCCESS) return TempFolder::Repaired;
  ShowError(FormatErrorMessage(error, {}));
  return TempFolder::Missing;
}

// The main window while it is there to be the owner of a question.
HWND LiveWindow() {
  const HWND window = app.mainWindow;
  return IsWindow(window) ? window : nullptr;
}

void TellStartFailed(uint32_t error, bool elevated, const std::wstring& file) {
  std::wstring text = LoadLocalizedString(STR_FILE) + L": " + file;
  if (elevated && !app.isAdmin) text += L"\n\n" + LoadLocalizedString(STR_START_AS_ADMINISTRATOR);
  MessageBoxW(LiveWindow(), FormatErrorMessage(error, text).c_str(), LoadLocalizedString(STR_ACTION_REQUIRED).c_str(),
              MB_ICONEXCLAMATION);
}

}  // namespace

std::wstring FormatErrorMessage(uint32_t error, const std::wstring& extra) {
  if (error == 0) return extra;
  std::wstring message = ErrorLine(error);
  const std::wstring description = GetErrorText(error);
  if (!description.empty()) message += description + L"\n";
  return message + extra;
}

int ShowBox(const std::wstring& text, const std::wstring& caption, UINT type) {
  Mailbox::Settle(app.mainWindow);
  const TaskbarCall call;
  return MessageBoxW(app.mainWindow, text.c_str(), caption.c_str(), type);
}

void ShowManifestError(uint32_t error) {
  const std::wstring text = FormatErrorMessage(error, LoadLocalizedString(STR_CANNOT_DOWNLOAD_LIST));
  ShowBox(text + L"\n\n" + ConnectionHint(), LoadLocalizedString(STR_MANIFEST), MB_OK | MB_ICONERROR);
}

void ShowConnectionHint() { ShowError(ConnectionHint()); }

void ShowCorruptDiskMessage() { ShowError(LoadLocalizedString(STR_DISK_CORRUPT)); }

TempFolder EnsureTempFolder() {
  const std::wstring folder = *app.tmpPath.Get();
  const uint32_t error = CreateDirectories(folder);
  if (error == ERROR_SUCCESS) return TempFolder::Ready;

  const std::wstring message = LoadLocalizedString(STR_CANNOT_CREATE_DIRECTORY) + L":\n" + folder;
  if (error != ERROR_ACCESS_DENIED) {
    ShowError(FormatErrorMessage(error, message));
    return TempFolder::Missing;
  }
  const std::wstring question = FormatErrorMessage(error, message + L"\n\n" + LoadLocalizedString(STR_FIX_PERMISSIONS));
  const int answer = ShowBox(question, LoadLocalizedString(STR_ERROR), MB_YESNO | MB_ICONERROR);
  return answer == IDYES ? RepairTempFolder(folder) : TempFolder::Missing;
}

void PromptDownloadLatest(const std::wstring& address, uint32_t error) {
  const std::wstring page = address.empty() ? DownloadPageAddress() : address;
  const std::wstring text = UpdateErrorLines(error) + LoadLocalizedString(STR_DOWNLOAD_LATEST) + L":\n" + page +
                            L"\n\n" + LoadLocalizedString(STR_OPEN_QUESTION);
  if (ShowBox(text, LoadLocalizedString(STR_UPDATE), MB_YESNO | MB_ICONQUESTION) == IDYES) {
    OpenAddress(page);
  }
  if (app.updateInProgress) PostMessageW(app.mainWindow, WM_CLOSE, 0, 0);
}

bool RunProcess(bool elevated, bool reportFailure, const std::wstring& file, const std::wstring& parameters) {
  const uint32_t error = StartProgram(elevated, file, parameters, LiveWindow());
  if (error != ERROR_SUCCESS && reportFailure) TellStartFailed(error, elevated, file);
  return error == ERROR_SUCCESS;
}
