// What the dialogs have in common.
#include "app/dialogs.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "app/context.h"
#include "app/theme.h"
#include "app/update_dialog.h"
#include "resource.h"
#include "support/dark_windows.h"
#include "support/opened_dialog.h"
#include "support/test_window.h"

namespace {

RECT PlaceOnScreen(HWND window) {
  RECT place{};
  GetWindowRect(window, &place);
  return place;
}

void ExpectCentred(HWND dialog, HWND owner) {
  const RECT own = PlaceOnScreen(dialog), over = PlaceOnScreen(owner);
  EXPECT_EQ(own.left - over.left, ((over.right - over.left) - (own.right - own.left)) / 2);
  EXPECT_EQ(own.top - over.top, ((over.bottom - over.top) - (own.bottom - own.top)) / 2);
}

constexpr int kModalDialogs[] = {COMMAND_ABOUT, COMMAND_SPEED_LIMIT};

class Dialogs : public testing::Test {
 protected:
  TestWindow window_{CreateProgramWindow};
};

TEST_F(Dialogs, AreCentredOverTheirOwner) {
  // Away from the middle of the screen, where Windows itself puts some dialogs.
  SetWindowPos(window_.Window(), nullptr, 41, 23, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
  for (const int command : kModalDialogs) {
    const OpenedDialog dialog(window_, command);
    EXPECT_EQ(GetWindow(dialog.Window(), GW_OWNER), window_.Window());
    ExpectCentred(dialog.Window(), window_.Window());
  }
  window_.Run([this] {
    const HWND dialog = CreateUpdateDialog(0);
    ExpectCentred(dialog, window_.Window());
    DestroyWindow(dialog);
  });
}

TEST_F(Dialogs, DisableTheMainWindowUntilAKeyOrButtonClosesThem) {
  for (const int command : kModalDialogs) {
    const struct {
      void (*close)(const OpenedDialog& dialog);
    } ways[] = {{[](const OpenedDialog& dialog) { dialog.Click(IDOK); }},
                {[](const OpenedDialog& dialog) { dialog.PressKey(VK_RETURN); }},
                {[](const OpenedDialog& dialog) { dialog.PressKey(VK_ESCAPE); }},
                {[](const OpenedDialog& dialog) { PostMessageW(dialog.Window(), WM_SYSCOMMAND, SC_CLOSE, 0); }}};
    for (const auto& way : ways) {
      const OpenedDialog dialog(window_, command);
      EXPECT_FALSE(IsWindowEnabled(window_.Window()));
      way.close(dialog);
      EXPECT_TRUE(dialog.WaitUntilClosed()) << command << ", way " << &way - ways;
      window_.Settle();
      EXPECT_TRUE(IsWindowEnabled(window_.Window()));
    }
  }
}

struct ColorQuestion {
  UINT message;
  int control;
};

// White on black is what controls are given in dark mode, and never in light mode.
void ExpectColors(const TestWindow& window, HWND dialog, const std::vector<ColorQuestion>& questions) {
  window.Run([&] {
    const HDC dc = CreateCompatibleDC(nullptr);
    for (const ColorQuestion& question : questions) {
      SetTextColor(dc, RGB(1, 2, 3));
      const auto control = reinterpret_cast<LPARAM>(GetDlgItem(dialog, question.control));
      const LRESULT brush = SendMessageW(dialog, question.message, reinterpret_cast<WPARAM>(dc), control);
      LOGBRUSH look{};
      GetObjectW(reinterpret_cast<HGDIOBJ>(brush), sizeof look, &look);
      EXPECT_EQ(GetTextColor(dc) == RGB(255, 255, 255), app.darkMode) << question.message;
      EXPECT_EQ(brush != 0 && look.lbColor == RGB(0, 0, 0), app.darkMode) << question.message;
    }
    DeleteDC(dc);
  });
}

TEST_F(Dialogs, OpenDarkAndFollowTheUser) {
  const std::vector<ColorQuestion> questions[] = {
      {{WM_CTLCOLORDLG, 0}, {WM_CTLCOLORSTATIC, ABOUT_TITLE}, {WM_CTLCOLORBTN, IDOK}},
      {{WM_CTLCOLORDLG, 0}, {WM_CTLCOLORSTATIC, SPEED_TRACKBAR}, {WM_CTLCOLORBTN, IDOK}, {WM_CTLCOLOREDIT, SPEED_EDIT}},
  };
  DarkWindows windows;
  SetupDarkMode();
  for (size_t i = 0; i < ARRAYSIZE(kModalDialogs); ++i) {
    windows.userWantsDark = true;
    DarkWindows::TellColorSetChange(window_.Window());
    ASSERT_TRUE(app.darkMode);
    const OpenedDialog dialog(window_, kModalDialogs[i]);
    EXPECT_TRUE(windows.allowed[dialog.Window()]);
    ExpectColors(window_, dialog.Window(), questions[i]);

    windows.userWantsDark = false;
    DarkWindows::TellColorSetChange(dialog.Window());
    EXPECT_FALSE(app.darkMode);
    EXPECT_FALSE(windows.allowed[dialog.Window()]);
    ExpectColors(window_, dialog.Window(), questions[i]);
  }
}

}  // namespace
