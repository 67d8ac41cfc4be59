#include "update/update_dialog.h"

#include <algorithm>

#include "core/context.h"
#include "core/localization.h"
#include "core/window_messages.h"
#include "system/files.h"
#include "system/text.h"
#include "ui/dialogs.h"
#include "ui/mailbox.h"
#include "ui/theme/theme.h"

namespace {

// One update runs in a process at most.
SharedWord<HWND> updateDialog;
SharedWord<uint32_t> announcedFileSize;
Mailbox& updateNotes = *new Mailbox;

INT_PTR CALLBACK UpdateProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) {
    CenterOverOwner(dialog);
    DialogDarkInit(dialog);
    return TRUE;
  }
  if (message == kShowNotesMessage) {
    updateNotes.OnMessage(dialog, wParam);
    return TRUE;
  }
  return AnswerThemeMessage(dialog, message, wParam, lParam).value_or(FALSE);
}

void ShowText(int control, const std::wstring& text) { updateNotes.LeaveText(GetDlgItem(updateDialog, control), text); }

}  // namespace

HWND CreateUpdateDialog(uint32_t announcedSize) {
  announcedFileSize = announcedSize;
  updateDialog = CreateDialogParamW(app.instance, MAKEINTRESOURCEW(DIALOG_UPDATE), app.mainWindow, UpdateProc, 0);
  return updateDialog;
}

void ShowUpdateStatus(unsigned text) { ShowText(UPDATE_STATUS, LoadLocalizedString(text)); }

void ShowUpdateProgress(int percent) { updateNotes.LeavePosition(GetDlgItem(updateDialog, UPDATE_PROGRESS), percent); }

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
    ShowUpdateProgress(static_cast<int>(std::min(PercentOf(progress->downloaded, progress->total), 100u)));
  }
  ShowText(UPDATE_RECEIVED, FormatByteSize(progress->downloaded));
}
