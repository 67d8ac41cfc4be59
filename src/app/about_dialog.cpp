#include "app/dialogs.h"

#include <windows.h>

#include <string>
#include <vector>

#include "core/context.h"
#include "core/localization.h"
#include "core/site.h"
#include "system/process.h"
#include "system/text.h"
#include "ui/controls.h"
#include "ui/dialogs.h"
#include "ui/theme/theme.h"

namespace {

constexpr wchar_t kLibraries[] = L"Third-party software:\ntinyxml2\nminizip";

// The buttons show addresses without their scheme. One for which there is no address isn't there.
void ShowLinks(HWND dialog) {
  std::vector<std::wstring> links = AboutLinks();
  links.resize(ABOUT_LAST_LINK - ABOUT_FIRST_LINK + 1);
  int button = ABOUT_FIRST_LINK;
  for (const std::wstring& link : links) {
    SetDlgItemTextW(dialog, button, link.c_str());
    ShowWindow(GetDlgItem(dialog, button++), link.empty() ? SW_HIDE : SW_SHOW);
  }
}

void Initialize(HWND dialog) {
  CenterOverOwner(dialog);
  SetWindowTextW(dialog, LoadLocalizedString(STR_HELP).c_str());
  const std::wstring version = LoadLocalizedString(STR_VERSION) + L": " + WidenBytes(kProductVersion);
  SetDlgItemTextW(dialog, ABOUT_LIBRARIES, kLibraries);
  SetDlgItemTextW(dialog, ABOUT_TITLE, LoadLocalizedString(STR_PRODUCT_TITLE).c_str());
  SetDlgItemTextW(dialog, ABOUT_VERSION, version.c_str());
  ShowLinks(dialog);
  DialogDarkInit(dialog);
}

void OpenLink(HWND button) { OpenAddress(L"https://" + WindowText(button)); }

void OnCommand(HWND dialog, int id) {
  if (id == IDOK || id == IDCANCEL) {
    EndDialog(dialog, id);
  } else if (id >= ABOUT_FIRST_LINK && id <= ABOUT_LAST_LINK) {
    OpenLink(GetDlgItem(dialog, id));
  }
}

INT_PTR CALLBACK AboutProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG:
      Initialize(dialog);
      return TRUE;
    case WM_COMMAND:
      OnCommand(dialog, LOWORD(wParam));
      return TRUE;
    default:
      return AnswerThemeMessage(dialog, message, wParam, lParam).value_or(FALSE);
  }
}

}  // namespace

void AboutDialog() { ShowModalDialog(DIALOG_ABOUT, AboutProc); }
