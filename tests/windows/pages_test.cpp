#include "app/pages.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <commctrl.h>
#include <string>
#include <vector>

#include "app/context.h"
#include "app/page_controls.h"
#include "support/test_window.h"

namespace {

struct ExpectedControl {
  const wchar_t* windowClass;
  Place place;
  int fontHeight;  // 0: not changed
  const wchar_t* text;
  DWORD style;  // besides WS_CHILD | WS_VISIBLE, and the border that edits take over from their style
};

std::vector<HWND> ChildrenOf(HWND parent) {
  std::vector<HWND> children;
  for (HWND child = GetWindow(parent, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
    children.push_back(child);
  }
  return children;
}

std::wstring ClassOf(HWND window) {
  wchar_t name[64];
  GetClassNameW(window, name, 64);
  return name;
}

HFONT FontOf(HWND window) { return reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0)); }

int FontHeightOf(HWND window) {
  LOGFONTW description{};
  GetObjectW(FontOf(window), sizeof(description), &description);
  return description.lfHeight;
}

std::vector<int> Numbers(const Place& place) { return {place.x, place.y, place.width, place.height}; }

void ExpectControls(const TestWindow& window, const std::vector<ExpectedControl>& expected) {
  const std::vector<HWND> children = ChildrenOf(window.Window());
  ASSERT_EQ(children.size(), expected.size());
  for (size_t i = 0; i < children.size(); ++i) {
    SCOPED_TRACE("control " + std::to_string(i));
    EXPECT_EQ(_wcsicmp(ClassOf(children[i]).c_str(), expected[i].windowClass), 0);
    EXPECT_EQ(Numbers(PlaceOf(children[i])), Numbers(expected[i].place));
    if (expected[i].fontHeight) {
      EXPECT_EQ(FontHeightOf(children[i]), expected[i].fontHeight);
    }
    EXPECT_EQ(TextOf(children[i]), expected[i].text);
    const auto style = static_cast<DWORD>(GetWindowLongPtrW(children[i], GWL_STYLE));
    EXPECT_EQ(style & (WS_CHILD | WS_VISIBLE | expected[i].style), WS_CHILD | WS_VISIBLE | expected[i].style);
  }
}

std::wstring RowText(HWND view, int row) {
  wchar_t text[64];
  LVITEMW item{};
  item.pszText = text;
  item.cchTextMax = 64;
  SendMessageW(view, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
  return text;
}

TEST(Pages, ComponentsPageStandsInPlace) {
  app.installPath.Set(L"C:\\Games");
  TestWindow window(ComponentsPage);
  EXPECT_EQ(app.currentPage, ComponentsPage);
  const DWORD list = WS_BORDER | LVS_REPORT | LVS_SINGLESEL | LVS_SHOWSELALWAYS | LVS_NOCOLUMNHEADER | LVS_NOSORTHEADER;
  ExpectControls(window, {{L"static", {10, 10, 565, 16}, 16, L"", 0},
                          {L"Edit", {10, 31, 460, 21}, 16, L"C:\\Games", WS_TABSTOP | ES_READONLY},
                          {L"Button", {475, 30, 100, 23}, 0, L"", WS_TABSTOP},
                          {L"static", {10, 59, 565, 16}, 16, L"Components:", 0},
                          {L"SysListView32", {10, 80, 565, 275}, 16, L"", list},
                          {L"static", {10, 360, 565, 16}, 16, L"", 0},
                          {L"Button", {242, 386, 100, 24}, 0, L"Install", WS_TABSTOP | WS_DISABLED}});
  EXPECT_EQ(GetDlgCtrlID(window.Components().installPathEdit.Window()), 2023);

  const HWND view = window.Components().itemsView;
  EXPECT_EQ(SendMessageW(view, LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0),
            LVS_EX_FULLROWSELECT | LVS_EX_INFOTIP | LVS_EX_LABELTIP | LVS_EX_DOUBLEBUFFER);
  EXPECT_EQ(SendMessageW(view, LVM_GETCOLUMNWIDTH, 0, 0), 565);
  ASSERT_EQ(SendMessageW(view, LVM_GETITEMCOUNT, 0, 0), 3);
  for (int row = 0; row < 3; ++row) EXPECT_EQ(RowText(view, row), L"Loading..");
  app.installPath.Set({});
}

TEST(Pages, InstallationPageStandsInPlace) {
  app.deleteTmpFiles = true;
  TestWindow window(InstallPage);
  EXPECT_EQ(app.currentPage, InstallPage);
  ExpectControls(window, {{L"static", {10, 10, 565, 16}, 16, L"", 0},
                          {L"msctls_progress32", {10, 31, 565, 18}, 0, L"", WS_TABSTOP},
                          {L"static", {10, 54, 565, 16}, 15, L"", 0},
                          {L"static", {10, 79, 565, 16}, 16, L"", 0},
                          {L"msctls_progress32", {10, 100, 565, 18}, 0, L"", WS_TABSTOP},
                          {L"static", {10, 123, 565, 16}, 15, L"", 0},
                          {L"Edit", {10, 148, 565, 207}, 16, L"", WS_TABSTOP | ES_MULTILINE | WS_VSCROLL},
                          {L"Button",
                           {10, 360, 565, 16},
                           16,
                           L"Delete created temporary files after installation",
                           WS_TABSTOP | BS_AUTOCHECKBOX},
                          {L"Button", {242, 386, 100, 24}, 0, L"Cancel", WS_TABSTOP}});
  const InstallPageControls& page = window.Installation();
  EXPECT_TRUE(page.deleteTmpCheckbox.IsChecked());
  EXPECT_EQ(GetDlgCtrlID(page.logEdit.Window()), 2024);
  EXPECT_EQ(SendMessageW(page.logEdit.Window(), EM_GETLIMITTEXT, 0, 0), 10'240'000);
  EXPECT_EQ(SendMessageW(page.totalProgress.Window(), PBM_GETRANGE, FALSE, 0), 1000);
  SendMessageW(page.logEdit.Window(), WM_CHAR, L'x', 0);
  EXPECT_EQ(TextOf(page.logEdit), L"");
  app.deleteTmpFiles = false;
}

TEST(Pages, LeavingAPageRemovesItsWindowsAndFonts) {
  TestWindow window(ComponentsPage);
  const HWND label = window.Components().installPathLabel.Window();
  const HWND list = window.Components().itemsView;
  const HFONT labelFont = FontOf(label), listFont = FontOf(list);
  window.Run(ShowInstallPage);
  EXPECT_FALSE(IsWindow(label));
  EXPECT_FALSE(IsWindow(list));
  EXPECT_EQ(app.componentsPage, nullptr);
  EXPECT_EQ(GetObjectType(labelFont), 0u);
  EXPECT_EQ(GetObjectType(listFont), 0u);
}

TEST(Pages, LeavingAPageWhileAThreadFillsItLeavesThatThreadItsControls) {
  TestWindow window(ComponentsPage);
  const auto page = &window.Components();
  const HFONT font = FontOf(page->totalSizeLabel.Window());
  app.manifestThread = ActiveThread();
  window.Run(ShowInstallPage);
  EXPECT_EQ(app.componentsPage, nullptr);
  EXPECT_FALSE(IsWindow(page->totalSizeLabel.Window()));
  EXPECT_EQ(GetObjectType(font), static_cast<DWORD>(OBJ_FONT));
  page->totalSizeLabel.SetText(L"too late");
  app.manifestThread.Reset();
  delete page;
}

TEST(Pages, ClosingPageHidesTheInstallationThatGoesOn) {
  TestWindow window(InstallPage);
  window.Run(ShowClosingPage);
  window.Run(ShowClosingPage);  // once more changes nothing
  EXPECT_EQ(app.currentPage, ClosingPage);
  const std::vector<HWND> children = ChildrenOf(window.Window());
  ASSERT_EQ(children.size(), 10u);
  for (size_t i = 0; i < 9; ++i) EXPECT_FALSE(IsWindowVisible(children[i])) << i;
  const HWND closing = children[9];
  EXPECT_EQ(TextOf(closing), L"Closing..");
  EXPECT_TRUE(IsWindowVisible(closing));
  EXPECT_EQ(Numbers(PlaceOf(closing)), (std::vector{0, 0, 600, 400}));
  EXPECT_EQ(FontHeightOf(closing), 22);
  EXPECT_EQ(GetWindowLongPtrW(closing, GWL_STYLE) & (SS_TYPEMASK | SS_CENTERIMAGE), SS_CENTER | SS_CENTERIMAGE);

  AppendLog(L"still here");
  window.Installation().packageLabel.SetText(L"also");
  EXPECT_EQ(window.LogLines(), std::vector<std::wstring>{L"still here"});
  EXPECT_EQ(TextOf(window.Installation().packageLabel), L"also");
}

TEST(Log, LinesFollowEachOtherAndLeaveTheSelectionAlone) {
  AppendLog(L"before there is a page");
  TestWindow window(InstallPage);
  const HWND log = window.Installation().logEdit.Window();
  AppendLog(L"first");
  AppendLog(L"");
  SendMessageW(log, EM_SETSEL, 1, 3);
  AppendLog(L"Gr\u00FC\u00DFe \u0438 \u043F\u0440\u0438\u0432\u0435\u0442");
  const std::vector<std::wstring> expected{L"first", L"",
                                           L"Gr\u00FC\u00DFe \u0438 \u043F\u0440\u0438\u0432\u0435\u0442"};
  EXPECT_EQ(window.LogLines(), expected);
  EXPECT_TRUE(TextOf(log).ends_with(L"\r\n"));
  DWORD start = 0, end = 0;
  SendMessageW(log, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
  EXPECT_EQ(start, 1u);
  EXPECT_EQ(end, 3u);
}

}  // namespace
