// What the dialogs show and do.
#include <set>

#include "core/localization.h"
#include "core/settings.h"
#include "support/opened_dialog.h"
#include "update/update_dialog.h"

namespace {

class Dialogs : public testing::Test {
 protected:
  const TestWindow window_{CreateProgramWindow};
};

TEST_F(Dialogs, StandInTheMiddleOfTheMainWindowUntilAKeyClosesThem) {
  // Away from the middle of the screen, where Windows itself puts some dialogs.
  SetWindowPos(window_.Window(), nullptr, 41, 23, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
  for (const int command : {COMMAND_ABOUT, COMMAND_SPEED_LIMIT}) {
    for (const WPARAM key : {VK_RETURN, VK_ESCAPE}) {
      const OpenedDialog dialog(window_, command);
      EXPECT_FALSE(IsWindowEnabled(window_.Window()));
      RECT own{}, over{};
      GetWindowRect(dialog.Window(), &own);
      GetWindowRect(window_.Window(), &over);
      EXPECT_NEAR(own.left + own.right, over.left + over.right, 1);
      EXPECT_NEAR(own.top + own.bottom, over.top + over.bottom, 1);
      PostMessageW(dialog.Window(), WM_KEYDOWN, key, 1);
      EXPECT_TRUE(dialog.WaitUntilClosed());
      EXPECT_TRUE(IsWindowEnabled(window_.Window()));
    }
  }
}

TEST_F(Dialogs, TabGoesRoundTheirControls) {
  const std::pair<int, std::set<int>> cases[] = {
      {COMMAND_ABOUT, {ABOUT_FIRST_LINK, ABOUT_FIRST_LINK + 1, ABOUT_FIRST_LINK + 2, ABOUT_LAST_LINK, IDOK}},
      {COMMAND_SPEED_LIMIT, {SPEED_TRACKBAR, SPEED_EDIT, IDOK, SPEED_RESET, IDCANCEL}}};
  for (const auto& [command, controls] : cases) {
    const OpenedDialog dialog(window_, command);
    std::set<int> visited;
    for (const HWND control : TabRound(dialog.Window())) visited.insert(GetDlgCtrlID(control));
    EXPECT_EQ(visited, controls);
  }
}

LRESULT SliderOf(const OpenedDialog& dialog) { return SendMessageW(dialog.Item(SPEED_TRACKBAR), TBM_GETPOS, 0, 0); }

// Moves the slider with the mouse button down.
void DragSlider(const OpenedDialog& dialog, int position) {
  SendMessageW(dialog.Item(SPEED_TRACKBAR), TBM_SETPOS, TRUE, position);
  SendMessageW(dialog.Window(), WM_HSCROLL, MAKEWPARAM(TB_THUMBTRACK, position), 0);
}

TEST_F(Dialogs, ReleasingTheSpeedSliderAtTheEndRaisesTheScale) {
  const OpenedDialog dialog(window_, COMMAND_SPEED_LIMIT);
  const std::pair<const wchar_t*, int> steps[] = {{L"1000", 10}, {L"10000", 66}, {L"15000", 50}, {L"30000", 50}};
  for (const auto& [edit, slider] : steps) {
    DragSlider(dialog, 100);
    EXPECT_EQ(dialog.Text(SPEED_EDIT), edit);
    EXPECT_EQ(SliderOf(dialog), 100) << "while it is dragged the scale stays";
    SendMessageW(dialog.Window(), WM_HSCROLL, TB_ENDTRACK, 0);
    EXPECT_EQ(dialog.Text(SPEED_EDIT), edit);
    EXPECT_EQ(SliderOf(dialog), slider);
  }
}

TEST_F(Dialogs, OkSavesTheSpeedThatWasTyped) {
  const std::tuple<const wchar_t*, int, uint32_t> cases[] = {{L"2500", 25, 2500}, {L"010", 0, 8},
                                                             {L"0x10", 1, 16},    {L"12 ab", 1, 12},
                                                             {L"", 0, 0},         {L"1234567890", 100, 123'456'789}};
  for (const auto& [typed, slider, limit] : cases) {
    const OpenedDialog dialog(window_, COMMAND_SPEED_LIMIT);
    SetDlgItemTextW(dialog.Window(), SPEED_EDIT, typed);
    EXPECT_EQ(SliderOf(dialog), slider);
    dialog.Click(IDOK);
    EXPECT_EQ(app.maxDownloadSpeedKB, limit);
    app.maxDownloadSpeedKB = 999;
    LoadSettings();
    EXPECT_EQ(app.maxDownloadSpeedKB, limit) << "saved";
  }
}

TEST_F(Dialogs, ResetOnlyEmptiesTheSpeedDialog) {
  app.maxDownloadSpeedKB = 2500;
  SaveMaxDownloadSpeed();
  const OpenedDialog dialog(window_, COMMAND_SPEED_LIMIT);
  SetDlgItemTextW(dialog.Window(), SPEED_EDIT, L"95000");
  dialog.Click(SPEED_RESET);
  EXPECT_EQ(dialog.Text(SPEED_EDIT), L"");
  EXPECT_EQ(SliderOf(dialog), 0);
  DragSlider(dialog, 50);
  EXPECT_EQ(dialog.Text(SPEED_EDIT), L"5000") << "the scale is that of the limit in effect";
  SendMessageW(dialog.Window(), WM_HSCROLL, TB_ENDTRACK, 0);
  EXPECT_EQ(app.maxDownloadSpeedKB, 2500u);
  LoadSettings();
  EXPECT_EQ(app.maxDownloadSpeedKB, 2500u) << "nothing was saved";
}

TEST_F(Dialogs, UpdateShowsProgress) {
  const std::tuple<uint32_t, DownloadProgress, uint64_t, int> cases[] = {
      {3000, {.total = 5000}, 5000, 0},  // the larger size counts
      {5000, {.total = 3000}, 5000, 0},
      {5000, {.transferStartTick = 1, .total = 300, .downloaded = 299}, 300, 99},  // the manifest no longer counts
      {0, {.transferStartTick = 1, .total = 10, .downloaded = 4000}, 10, 100},
      {0, {.transferStartTick = 1, .downloaded = 4000}, 0, 0},
  };
  for (auto [announced, progress, totalAfter, percent] : cases) {
    const HWND dialog = CreateUpdateDialog(announced);
    OnUpdateDownloadProgress(&progress);
    EXPECT_EQ(progress.total, totalAfter);
    EXPECT_EQ(SendDlgItemMessageW(dialog, UPDATE_PROGRESS, PBM_GETPOS, 0, 0), percent);
    DestroyWindow(dialog);
  }
}

}  // namespace
