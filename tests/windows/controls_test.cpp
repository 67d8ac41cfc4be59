#include "app/controls.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include <memory>

#include "support/test_window.h"

namespace {

LOGFONTW FontOf(HWND window) {
  LOGFONTW description{};
  GetObjectW(reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0)), sizeof(description), &description);
  return description;
}

TEST(Controls, ProgressIsTruncatedToThousandths) {
  const struct {
    uint64_t done, total;
    int position;
  } cases[] = {
      {0, 0, 0},
      {5, 0, 0},
      {0, 3, 0},
      {1, 3, 333},
      {2, 3, 666},
      {3, 3, 1000},
      {4, 3, 1000},
      {999, 1000, 999},
      {1, 2000, 0},
      {6'000'000'000, 12'000'000'000, 500},
      {1, UINT64_MAX, 0},
      {UINT64_MAX / 2, UINT64_MAX, 499},
      {UINT64_MAX - 1, UINT64_MAX, 999},
      {UINT64_MAX, UINT64_MAX, 1000},
  };
  for (const auto& test : cases) {
    EXPECT_EQ(ProgressPosition(test.done, test.total), test.position) << test.done << " of " << test.total;
  }
}

TEST(Controls, ProgressBarSendsOnlyChanges) {
  TestWindow window(NoPage);
  std::unique_ptr<ProgressBar> bar;
  window.Run([&] { bar = std::make_unique<ProgressBar>(window.Window()); });
  // Whatever moves the bar behind the wrapper's back stays until a different position is sent.
  bar->SetPosition(250);
  EXPECT_EQ(PositionOf(*bar), 250);
  SendMessageW(bar->Window(), PBM_SETPOS, 7, 0);
  bar->SetPosition(250);
  EXPECT_EQ(PositionOf(*bar), 7);
  bar->SetPosition(kProgressRange);
  EXPECT_EQ(PositionOf(*bar), 1000);
  bar->SetPosition(0);
  EXPECT_EQ(PositionOf(*bar), 0);
}

TEST(Controls, FontKeepsItsFaceWhenItsHeightChanges) {
  TestWindow window(NoPage);
  std::unique_ptr<Label> label;
  window.Run([&] { label = std::make_unique<Label>(window.Window(), L"text"); });
  const LOGFONTW stock = FontOf(label->Window());
  window.Run([&] { label->SetFontHeight(22); });
  const LOGFONTW changed = FontOf(label->Window());
  EXPECT_EQ(changed.lfHeight, 22);
  EXPECT_STREQ(changed.lfFaceName, stock.lfFaceName);
  EXPECT_EQ(changed.lfWeight, stock.lfWeight);
}

TEST(Controls, LockedEditTakesNoInputButScrollsAndSelects) {
  TestWindow window(NoPage);
  std::unique_ptr<TextEdit> edit;
  window.Run([&] {
    edit = std::make_unique<TextEdit>(window.Window(), 1, L"kept", ES_MULTILINE);
    edit->Lock();
  });
  const HWND handle = edit->Window();
  window.Run([&] {
    OpenClipboard(handle);
    EmptyClipboard();
    const HGLOBAL text = GlobalAlloc(GMEM_MOVEABLE, 5 * sizeof(wchar_t));
    memcpy(GlobalLock(text), L"past", 5 * sizeof(wchar_t));
    GlobalUnlock(text);
    SetClipboardData(CF_UNICODETEXT, text);
    CloseClipboard();
  });
  SendMessageW(handle, WM_CHAR, L'x', 0);
  SendMessageW(handle, EM_SETSEL, 0, 4);
  SendMessageW(handle, WM_KEYDOWN, VK_DELETE, 0);
  SendMessageW(handle, WM_PASTE, 0, 0);
  EXPECT_EQ(TextOf(handle), L"kept");
  DWORD start = 9, end = 9;
  SendMessageW(handle, EM_GETSEL, reinterpret_cast<WPARAM>(&start), reinterpret_cast<LPARAM>(&end));
  EXPECT_EQ(start, 0u);
  EXPECT_EQ(end, 4u);
  window.Run([&] { DestroyWindow(handle); });
  EXPECT_FALSE(IsWindow(handle));
}

}  // namespace
