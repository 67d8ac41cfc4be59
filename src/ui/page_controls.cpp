#include "ui/page_controls.h"

#include <commctrl.h>

#include "core/context.h"
#include "core/localization.h"
#include "system/text.h"
#include "ui/mailbox.h"
#include "ui/mnemonics.h"
#include "ui/scale.h"

namespace {

constexpr int kLineHeight = 16;
constexpr int kDetailHeight = 15;
constexpr Place kItemsPlace{10, 80, 565, 275};
constexpr int kPlaceholderRows = 3;
constexpr WPARAM kLogLimit = 10'240'000;

Place LineAt(int y) { return {10, y, 565, 16}; }

// The rows that stand here until the manifest has been read.
void AddPlaceholderRows(HWND itemsView) {
  std::wstring text = LoadLocalizedString(STR_LOADING) + L"..";
  LVITEMW row{};
  row.mask = LVIF_TEXT;
  row.pszText = text.data();
  for (row.iItem = 0; row.iItem < kPlaceholderRows; ++row.iItem) {
    SendMessageW(itemsView, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&row));
  }
}

// The window that shows a row's hint would take a "&" in it for the sign of a letter.
void ShowHintsAsTheyAre(HWND itemsView) {
  const auto hints = reinterpret_cast<HWND>(SendMessageW(itemsView, LVM_GETTOOLTIPS, 0, 0));
  SetWindowLongW(hints, GWL_STYLE, GetWindowLongW(hints, GWL_STYLE) | TTS_NOPREFIX);
}

HWND CreateItemsView(HWND parent) {
  const DWORD style = WS_CHILD | WS_VISIBLE | WS_BORDER | LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS |
                      LVS_NOCOLUMNHEADER | LVS_NOSORTHEADER | WS_TABSTOP;
  const HWND view = CreateWindowExW(0, WC_LISTVIEWW, nullptr, style, 0, 0, 0, 0, parent, nullptr, nullptr, nullptr);
  const LPARAM behaviour = LVS_EX_FULLROWSELECT | LVS_EX_INFOTIP | LVS_EX_LABELTIP;
  SendMessageW(view, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, behaviour);
  SendMessageW(view, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_DOUBLEBUFFER, LVS_EX_DOUBLEBUFFER);

  LVCOLUMNW column{};
  column.mask = LVCF_WIDTH;
  column.cx = Scaled(kItemsPlace.width);
  SendMessageW(view, LVM_INSERTCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
  AddPlaceholderRows(view);
  ShowHintsAsTheyAre(view);
  return view;
}

}  // namespace

ComponentsPageControls::ComponentsPageControls(HWND parent)
    : installPathLabel(parent),
      installPathEdit(parent, EDIT_INSTALL_PATH, *app.installPath.Get(), ES_READONLY),
      selectFolderButton(parent, {}),
      componentsLabel(parent, LoadLocalizedString(STR_COMPONENTS) + L":"),
      itemsView(CreateItemsView(parent)),
      totalSizeLabel(parent),
      installButton(parent, LoadMarkedString(STR_INSTALL)) {
  Arrange();
  EnableWindow(installButton.Window(), FALSE);
  if (!app.isAdmin) SendMessageW(installButton.Window(), BCM_SETSHIELD, 0, TRUE);
}

void ComponentsPageControls::Arrange() {
  installPathLabel.SetPlace(LineAt(10));
  installPathEdit.SetPlace({10, 31, 460, 21});
  selectFolderButton.PlaceAt(475, 30, 23);
  componentsLabel.SetPlace(LineAt(59));
  PlaceWindow(itemsView, kItemsPlace);
  itemsViewFont = ChangeFontHeight(itemsView, kLineHeight);
  totalSizeLabel.SetPlace(LineAt(360));
  installButton.PlaceAt(242, 386, 24);
  for (Control* line : {static_cast<Control*>(&installPathLabel), static_cast<Control*>(&installPathEdit),
                        static_cast<Control*>(&componentsLabel), static_cast<Control*>(&totalSizeLabel)}) {
    line->SetFontHeight(kLineHeight);
  }
}

InstallPageControls::InstallPageControls(HWND parent)
    : packageLabel(parent),
      packageProgress(parent),
      packageDetailLabel(parent),
      totalLabel(parent),
      totalProgress(parent),
      totalDetailLabel(parent),
      logName(parent, LoadLocalizedString(STR_INSTALLER)),
      logEdit(parent, EDIT_LOG, {}, ES_MULTILINE | WS_VSCROLL),
      deleteTmpCheckbox(parent, LoadMarkedString(STR_DELETE_TEMP_FILES), app.deleteTmpFiles),
      cancelButton(parent, LoadMarkedString(STR_CANCEL)) {
  Arrange();
  SendMessageW(logEdit.Window(), EM_SETLIMITTEXT, kLogLimit, 0);
  logEdit.Lock();
}

void InstallPageControls::Arrange() {
  packageLabel.SetPlace(LineAt(10));
  packageProgress.PlaceAt(31);
  packageDetailLabel.SetPlace(LineAt(54));
  totalLabel.SetPlace(LineAt(79));
  totalProgress.PlaceAt(100);
  totalDetailLabel.SetPlace(LineAt(123));
  logEdit.SetPlace({10, 148, 565, 207});
  deleteTmpCheckbox.SetPlace(LineAt(360));
  cancelButton.PlaceAt(242, 386, 24);

  packageLabel.SetFontHeight(kLineHeight);
  packageDetailLabel.SetFontHeight(kDetailHeight);
  totalLabel.SetFontHeight(kLineHeight);
  totalDetailLabel.SetFontHeight(kDetailHeight);
  logEdit.SetFontHeight(kLineHeight);
  deleteTmpCheckbox.SetFontHeight(kLineHeight);
}

void AppendLog(const std::wstring& text) {
  if (const InstallPageControls* page = app.installPage) pageNotes.LeaveLine(page->logEdit.Window(), OneLine(text));
}
