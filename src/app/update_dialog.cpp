#include "app/update_dialog.h"

#include <commctrl.h>

#include <algorithm>

#include "app/context.h"
#include "app/dialogs.h"
#include "app/localization.h"
#include "app/theme.h"
#include "system/files.h"

namespace {

// One update runs in a process at most.
SharedWord<HWND> updateDialog;
SharedWord<uint32_t> announcedFileSize;

INT_PTR CALLBACK UpdateProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) {
    CenterOverOwner(dialog);
    DialogDarkInit(dialog);
    return TRUE;
  }
  return AnswerThemeMessage(dialog, message, wParam, lParam).value_or(FALSE);
}

void ShowText(int control, const std::wstring& text) { SetDlgItemTextW(updateDialog, control, text.c_str()); }

}  // namespace

HWND CreateUpdateDialog(uint32_t announcedSize) {
  announcedFileSize = announcedSize;
  updateDialog = CreateDialogParamW(app.instance, MAKEINTRESOURCEW(DIALOG_UPDATE), app.mainWindow, UpdateProc, 0);
  return updateDialog;
}

void ShowUpdateStatus(unsigned text) { ShowText(UPDATE_STATUS, LoadLocalizedString(text)); }

void ShowUpdateProgress(int percent) {
  SendDlgItemMessageW(updateDialog, UPDATE_PROGRESS, PBM_SETPOS, static_cast<WPARAM>(percent), 0);
}

void ClearUpdateDisplay() {
  ShowUpdateProgress(0);
  ShowText(UPDATE_RECEIVED, L"");
  ShowText(UPDATE_TOTAL, L"");
}

void OnUpdateDownloadProgress(DownloadProgress* progress) {
  if (progress->transferStartTick == 0) {
    progress->total = std::max<uint64_t>(progress->total, announcedFileSize);
    if (progress->total != 0) ShowText(UPDATE_TOTAL, FormatByteSize(progress->total));
  }
  if (progress->total != 0) {
    const float percent = static_cast<float>(progress->downloaded) * 100.0f / static_cast<float>(progress->total);
    ShowUpdateProgress(static_cast<int>(std::min(percent, 100.0f)));
  }
  ShowText(UPDATE_RECEIVED, FormatByteSize(progress->downloaded));
}
