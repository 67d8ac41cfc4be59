#include "app/message_boxes.h"

#include "app/context.h"
#include "app/localization.h"
#include "app/site.h"
#include "net/error_text.h"
#include "system/error_message.h"
#include "system/files.h"
#include "system/process.h"

namespace {

// FormatErrorMessage for an error that was read earlier; 0 means that there was none.
std::wstring DescribeError(DWORD error, const std::wstring& extra) {
  SetLastError(error);
  return FormatErrorMessage(error, extra);
}

void ShowError(const std::wstring& text) { ShowBox(text, LoadLocalizedString(STR_ERROR), MB_OK | MB_ICONERROR); }

std::wstring ConnectionHint() {
  return LoadLocalizedString(STR_CHECK_CONNECTION) + L"\n\n" + LoadLocalizedString(STR_ANTIVIRUS_HINT);
}

// "Error: ..." of an error of the update, with the line for its description even where that is empty.
std::wstring UpdateErrorLines(DWORD error) {
  if (error == 0) return {};
  return LoadLocalizedString(STR_ERROR) + L": " + std::to_wstring(error) + L"\n" + GetErrorText(error) + L"\n";
}

}  // namespace

int ShowBox(const std::wstring& text, const std::wstring& caption, UINT type) {
  return MessageBoxW(app.mainWindow, text.c_str(), caption.c_str(), type);
}

void ShowManifestError() {
  const DWORD error = GetLastError();
  const std::wstring text = DescribeError(error, LoadLocalizedString(STR_CANNOT_DOWNLOAD_LIST));
  ShowBox(text + L"\n\n" + ConnectionHint(), LoadLocalizedString(STR_MANIFEST), MB_OK | MB_ICONERROR);
}

void ShowConnectionHint() { ShowError(ConnectionHint()); }

void ShowCorruptDiskMessage() { ShowError(LoadLocalizedString(STR_DISK_CORRUPT)); }

int EnsureTempFolder() {
  const std::wstring folder = *app.tmpPath.Get();
  const DWORD error = CreateDirectories(folder);
  if (error == ERROR_SUCCESS) return 1;

  const std::wstring message = LoadLocalizedString(STR_CANNOT_CREATE_DIRECTORY) + L":\n" + folder;
  if (error != ERROR_ACCESS_DENIED) {
    ShowError(DescribeError(error, message));
    return 0;
  }
  const std::wstring question = DescribeError(error, message + L"\n\n" + LoadLocalizedString(STR_FIX_PERMISSIONS));
  if (ShowBox(question, LoadLocalizedString(STR_ERROR), MB_YESNO | MB_ICONERROR) != IDYES) return 0;
  if (!RepairPermissions()) return 0;
  const DWORD errorAfterRepair = CreateDirectories(folder);
  if (errorAfterRepair == ERROR_SUCCESS) return 2;
  ShowError(DescribeError(errorAfterRepair, {}));
  return 0;
}

void PromptDownloadLatest(const std::wstring& address) {
  const DWORD error = GetLastError();
  const std::wstring page = address.empty() ? DownloadPageAddress() : address;
  const std::wstring text = UpdateErrorLines(error) + LoadLocalizedString(STR_DOWNLOAD_LATEST) + L":\n" + page +
                            L"\n\n" + LoadLocalizedString(STR_OPEN) + L"?";
  if (ShowBox(text, LoadLocalizedString(STR_UPDATE), MB_YESNO | MB_ICONQUESTION) == IDYES) {
    OpenAddress(page);
  }
  if (app.updateInProgress) PostMessageW(app.mainWindow, WM_CLOSE, 0, 0);
}
