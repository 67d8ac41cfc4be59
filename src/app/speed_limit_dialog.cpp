#include "app/dialogs.h"

#include <windows.h>
// commctrl.h needs windows.h before it.
#include <commctrl.h>

#include <string>

#include "app/speed_scale.h"
#include "core/context.h"
#include "core/localization.h"
#include "core/settings.h"
#include "ui/dialogs.h"
#include "ui/mnemonics.h"
#include "ui/theme/theme.h"

namespace {

// Both outlive a dialog. While the slider is dragged, the edit follows it and not the other way round.
uint32_t scaleMax = 1'000;
bool dragEnded = true;

uint32_t EnteredSpeed(HWND dialog) {
  wchar_t text[10];
  GetDlgItemTextW(dialog, SPEED_EDIT, text, ARRAYSIZE(text));
  return ParseSpeed(text);
}

void ShowSpeed(HWND dialog, uint32_t speed) { SetDlgItemTextW(dialog, SPEED_EDIT, SpeedText(speed).c_str()); }

void MoveSlider(HWND dialog, uint32_t position) {
  SendDlgItemMessageW(dialog, SPEED_TRACKBAR, TBM_SETPOS, TRUE, static_cast<LPARAM>(position));
}

void FitScale(HWND dialog, uint32_t speed) {
  scaleMax = SpeedScaleMax(speed);
  MoveSlider(dialog, PositionOfSpeed(speed, scaleMax));
}

void Initialize(HWND dialog) {
  const std::wstring title = LoadLocalizedString(STR_SPEED_LIMIT);
  SetWindowTextW(dialog, title.c_str());
  for (const int name : {SPEED_TRACKBAR_NAME, SPEED_EDIT_NAME}) SetDlgItemTextW(dialog, name, title.c_str());
  dragEnded = true;  // the dialog before this one may have been closed while its slider was dragged
  FitScale(dialog, app.maxDownloadSpeedKB);
  ShowSpeed(dialog, app.maxDownloadSpeedKB);
  SetDlgItemTextW(dialog, IDOK, LoadLocalizedString(STR_OK).c_str());
  SetDlgItemTextW(dialog, SPEED_RESET, Mnemonics().Mark(LoadLocalizedString(STR_RESET)).c_str());
  SetDlgItemTextW(dialog, IDCANCEL, LoadLocalizedString(STR_CANCEL).c_str());
  CenterOverOwner(dialog);
  DialogDarkInit(dialog);
}

// Releasing the slider at the end of the scale moves on to a larger one.
void OnSlider(HWND dialog, WORD notification) {
  dragEnded = notification == TB_ENDTRACK;
  const auto position = static_cast<uint32_t>(SendDlgItemMessageW(dialog, SPEED_TRACKBAR, TBM_GETPOS, 0, 0));
  const uint32_t speed = SpeedAtPosition(position, scaleMax);
  if (speed != EnteredSpeed(dialog)) ShowSpeed(dialog, speed);
  if (dragEnded) FitScale(dialog, speed);
}

void OnEditChanged(HWND dialog) {
  if (dragEnded) FitScale(dialog, EnteredSpeed(dialog));
}

void OnReset(HWND dialog) {
  ShowSpeed(dialog, 0);
  MoveSlider(dialog, 0);
  scaleMax = SpeedScaleMax(app.maxDownloadSpeedKB);
}

// What nobody has touched stays as it is, though its text may be longer than what is read from the edit.
bool IsUntouched(HWND dialog) {
  wchar_t text[16];
  GetDlgItemTextW(dialog, SPEED_EDIT, text, ARRAYSIZE(text));
  return text == SpeedText(app.maxDownloadSpeedKB);
}

void OnOk(HWND dialog) {
  const uint32_t speed = EnteredSpeed(dialog);
  if (speed != app.maxDownloadSpeedKB && !IsUntouched(dialog)) {
    SetSpeedLimit(speed);
    SaveMaxDownloadSpeed();
  }
  EndDialog(dialog, IDOK);
}

void OnCommand(HWND dialog, int id, int notification) {
  switch (id) {
    case IDOK:
      return OnOk(dialog);
    case IDCANCEL:
      EndDialog(dialog, IDCANCEL);
      return;
    case SPEED_RESET:
      return OnReset(dialog);
    case SPEED_EDIT:
      if (notification == EN_CHANGE) OnEditChanged(dialog);
      return;
  }
}

INT_PTR CALLBACK SpeedLimitProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG:
      Initialize(dialog);
      return TRUE;
    case WM_HSCROLL:
      OnSlider(dialog, LOWORD(wParam));
      return TRUE;
    case WM_COMMAND:
      OnCommand(dialog, LOWORD(wParam), HIWORD(wParam));
      return TRUE;
    case WM_THEMECHANGED:
      DialogThemeChanged(dialog);
      // The slider keeps a picture of its background until it is told that colours have changed.
      SendDlgItemMessageW(dialog, SPEED_TRACKBAR, WM_THEMECHANGED, 0, 0);
      ThemeUnstyledControl(GetDlgItem(dialog, SPEED_EDIT));
      return TRUE;
    default:
      return AnswerThemeMessage(dialog, message, wParam, lParam).value_or(FALSE);
  }
}

}  // namespace

void SpeedLimitDialog() { ShowModalDialog(DIALOG_SPEED_LIMIT, SpeedLimitProc); }
