#include <windows.h>
// commctrl.h needs windows.h before it.
#include <commctrl.h>

#include "app/localization.h"
#include "app/settings.h"
#include "app/update_dialog.h"
#include "support/opened_dialog.h"
#include "support/shell_recorder.h"

namespace {

class Dialogs : public testing::Test {
 protected:
  const TestWindow window_{CreateProgramWindow};
};

TEST_F(Dialogs, StandInTheMiddleOfTheMainWindowUntilAKeyOrButtonClosesThem) {
  // Away from the middle of the screen, where Windows itself puts some dialogs.
  SetWindowPos(window_.Window(), nullptr, 41, 23, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
  void (*const ways[])(const OpenedDialog&) = {
      [](const OpenedDialog& dialog) { dialog.Click(IDOK); },
      [](const OpenedDialog& dialog) { dialog.PressKey(VK_RETURN); },
      [](const OpenedDialog& dialog) { dialog.PressKey(VK_ESCAPE); },
      [](const OpenedDialog& dialog) { PostMessageW(dialog.Window(), WM_SYSCOMMAND, SC_CLOSE, 0); },
  };
  for (const int command : {COMMAND_ABOUT, COMMAND_SPEED_LIMIT}) {
    for (const auto& close : ways) {
      const OpenedDialog dialog(window_, command);
      EXPECT_FALSE(IsWindowEnabled(window_.Window()));
      RECT own{}, over{};
      GetWindowRect(dialog.Window(), &own);
      GetWindowRect(window_.Window(), &over);
      EXPECT_NEAR(own.left + own.right, over.left + over.right, 1);
      EXPECT_NEAR(own.top + own.bottom, over.top + over.bottom, 1);
      close(dialog);
      EXPECT_TRUE(dialog.WaitUntilClosed()) << command << ", way " << &close - ways;
      EXPECT_TRUE(IsWindowEnabled(window_.Window()));
    }
  }
}

TEST_F(Dialogs, AboutTellsTheVersionAndOpensItsLinks) {
  window_.Run([] { SetThreadLanguage(LANG_POLISH); });
  const ShellRecorder shell;
  const OpenedDialog dialog(window_, COMMAND_ABOUT);
  EXPECT_EQ(dialog.Text(ABOUT_VERSION), L"Wersja: 4.0.8");
  for (int link = ABOUT_FIRST_LINK; link <= ABOUT_LAST_LINK; ++link) {
    dialog.Click(link);
    EXPECT_EQ(shell.Starts().back().file, L"https://" + dialog.Text(link));
  }
  EXPECT_EQ(shell.Starts().size(), 4u);
}

class SpeedLimit : public OpenedDialog {
 public:
  explicit SpeedLimit(const TestWindow& window) : OpenedDialog(window, COMMAND_SPEED_LIMIT) {}

  std::wstring Edit() const { return Text(SPEED_EDIT); }
  int Slider() const { return static_cast<int>(SendMessageW(Item(SPEED_TRACKBAR), TBM_GETPOS, 0, 0)); }
  // Moves the slider with the mouse button down, or lets it go.
  void Drag(int position) const {
    SendMessageW(Item(SPEED_TRACKBAR), TBM_SETPOS, TRUE, position);
    SendMessageW(Window(), WM_HSCROLL, MAKEWPARAM(TB_THUMBTRACK, position), 0);
  }
  void Release() const { SendMessageW(Window(), WM_HSCROLL, TB_ENDTRACK, 0); }
};

TEST_F(Dialogs, ReleasingTheSpeedSliderAtTheEndRaisesTheScale) {
  const SpeedLimit dialog(window_);
  const std::pair<const wchar_t*, int> steps[] = {{L"1000", 10}, {L"10000", 66}, {L"15000", 50}, {L"30000", 50}};
  for (const auto& [edit, slider] : steps) {
    dialog.Drag(100);
    EXPECT_EQ(dialog.Edit(), edit);
    EXPECT_EQ(dialog.Slider(), 100) << "while it is dragged the scale stays";
    dialog.Release();
    EXPECT_EQ(dialog.Edit(), edit);
    EXPECT_EQ(dialog.Slider(), slider);
  }
}

TEST_F(Dialogs, OkSavesTheSpeedThatWasTyped) {
  const struct {
    const wchar_t* typed;
    int slider;
    uint32_t limit;
  } cases[] = {{L"2500", 25, 2500}, {L"010", 0, 8}, {L"0x10", 1, 16},
               {L"12 ab", 1, 12},   {L"", 0, 0},    {L"1234567890", 100, 123'456'789}};
  for (const auto& test : cases) {
    const SpeedLimit dialog(window_);
    SetDlgItemTextW(dialog.Window(), SPEED_EDIT, test.typed);
    EXPECT_EQ(dialog.Slider(), test.slider);
    dialog.Click(IDOK);
    EXPECT_EQ(app.maxDownloadSpeedKB, test.limit);
    app.maxDownloadSpeedKB = 999;
    LoadSettings();
    EXPECT_EQ(app.maxDownloadSpeedKB, test.limit) << "saved";
  }
}

TEST_F(Dialogs, ResetOnlyEmptiesTheSpeedDialog) {
  app.maxDownloadSpeedKB = 2500;
  SaveMaxDownloadSpeed();
  const SpeedLimit dialog(window_);
  SetDlgItemTextW(dialog.Window(), SPEED_EDIT, L"95000");
  dialog.Click(SPEED_RESET);
  EXPECT_EQ(dialog.Edit(), L"");
  EXPECT_EQ(dialog.Slider(), 0);
  dialog.Drag(50);
  EXPECT_EQ(dialog.Edit(), L"5000") << "the scale is that of the limit in effect";
  LoadSettings();
  EXPECT_EQ(app.maxDownloadSpeedKB, 2500u);
}

TEST_F(Dialogs, UpdateShowsProgress) {
  constexpr uint64_t kGigabyte = uint64_t{1} << 30;
  const struct {
    uint32_t announced;
    DownloadProgress progress;
    uint64_t totalAfter;
    int percent;
  } cases[] = {
      {3000, {.total = 5000}, 5000, 0},                                            // the larger size counts
      {5000, {.transferStartTick = 1, .total = 300, .downloaded = 299}, 300, 99},  // the manifest no longer counts
      {0, {.transferStartTick = 1, .total = 10, .downloaded = 4000}, 10, 100},
      {0, {.transferStartTick = 1, .downloaded = 4000}, 0, 0},
      {0, {.transferStartTick = 1, .total = 8 * kGigabyte, .downloaded = 6 * kGigabyte}, 8 * kGigabyte, 75},
  };
  for (const auto& test : cases) {
    const HWND dialog = CreateUpdateDialog(test.announced);
    DownloadProgress progress = test.progress;
    OnUpdateDownloadProgress(&progress);
    EXPECT_EQ(progress.total, test.totalAfter);
    EXPECT_EQ(SendDlgItemMessageW(dialog, UPDATE_PROGRESS, PBM_GETPOS, 0, 0), test.percent);
    DestroyWindow(dialog);
  }
}

}  // namespace
