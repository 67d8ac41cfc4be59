#include "app/speed_limit_dialog.h"

#include <gtest/gtest.h>
#include <windows.h>
// commctrl.h needs windows.h before it.
#include <commctrl.h>

#include <optional>
#include <string>
#include <tuple>

#include "app/context.h"
#include "app/localization.h"
#include "support/opened_dialog.h"
#include "support/test_window.h"

namespace {

constexpr wchar_t kValue[] = L"MaxDownloadSpeed";

std::optional<DWORD> SavedLimit() {
  DWORD limit = 0, size = sizeof limit;
  const LSTATUS status =
      RegGetValueW(HKEY_CURRENT_USER, app.registryKeyPath.c_str(), kValue, RRF_RT_REG_DWORD, nullptr, &limit, &size);
  return status == ERROR_SUCCESS ? std::optional<DWORD>(limit) : std::nullopt;
}

class SpeedLimit : public OpenedDialog {
 public:
  explicit SpeedLimit(const TestWindow& window) : OpenedDialog(window, COMMAND_SPEED_LIMIT) {}

  std::wstring Edit() const { return Text(SPEED_EDIT); }
  int Slider() const { return static_cast<int>(SendMessageW(Item(SPEED_TRACKBAR), TBM_GETPOS, 0, 0)); }
  // Moves the slider with the mouse button down, or lets it go.
  void Drag(int position) const {
    SendMessageW(Item(SPEED_TRACKBAR), TBM_SETPOS, TRUE, position);
    Notify(TB_THUMBTRACK, position);
  }
  void Release() const { Notify(TB_ENDTRACK, 0); }

 private:
  void Notify(WORD code, int position) const {
    SendMessageW(Window(), WM_HSCROLL, MAKEWPARAM(code, position), reinterpret_cast<LPARAM>(Item(SPEED_TRACKBAR)));
  }
};

class SpeedLimitDialogTest : public testing::Test {
 protected:
  SpeedLimitDialogTest() { SetLimit(0); }
  ~SpeedLimitDialogTest() override { SetLimit(0); }

  static void SetLimit(uint32_t kilobytes) {
    app.maxDownloadSpeedKB = kilobytes;
    app.speedLimitBytes = kilobytes * 1024;
    RegDeleteKeyValueW(HKEY_CURRENT_USER, app.registryKeyPath.c_str(), kValue);
  }

  TestWindow window_{CreateProgramWindow};
};

TEST_F(SpeedLimitDialogTest, ShowsTheLimit) {
  const struct {
    uint32_t limit;
    const wchar_t* edit;
    int slider;
  } cases[] = {{0, L"", 0}, {2500, L"2500", 25}, {999, L"999", 99}, {95'000, L"95000", 95}, {250'000, L"250000", 100}};
  for (const auto& test : cases) {
    SetLimit(test.limit);
    const SpeedLimit dialog(window_);
    EXPECT_EQ(dialog.Edit(), test.edit);
    EXPECT_EQ(dialog.Slider(), test.slider) << test.limit;
  }
}

TEST_F(SpeedLimitDialogTest, ReleasingTheSliderAtTheEndRaisesTheScale) {
  const SpeedLimit dialog(window_);
  const struct {
    const wchar_t* edit;
    int slider;
  } steps[] = {{L"1000", 10},  {L"10000", 66}, {L"15000", 50},   {L"30000", 50},
               {L"60000", 66}, {L"90000", 90}, {L"100000", 100}, {L"100000", 100}};
  for (const auto& step : steps) {
    dialog.Drag(100);
    EXPECT_EQ(dialog.Edit(), step.edit);
    EXPECT_EQ(dialog.Slider(), 100) << "while it is dragged the scale stays";
    dialog.Release();
    EXPECT_EQ(dialog.Edit(), step.edit);
    EXPECT_EQ(dialog.Slider(), step.slider) << testing::PrintToString(step.edit);
  }
  dialog.Drag(0);
  EXPECT_EQ(dialog.Edit(), L"");
  dialog.Release();
  dialog.Drag(50);
  EXPECT_EQ(dialog.Edit(), L"500");
  dialog.Release();
}

TEST_F(SpeedLimitDialogTest, SliderFollowsTheEdit) {
  const struct {
    const wchar_t* typed;
    int slider;
  } cases[] = {{L"2500", 25}, {L"0x10", 1}, {L"95000", 95}, {L"999999999", 100}, {L"nonsense", 0}, {L"", 0}};
  const SpeedLimit dialog(window_);
  for (const auto& test : cases) {
    dialog.Type(SPEED_EDIT, test.typed);
    EXPECT_EQ(dialog.Edit(), test.typed);
    EXPECT_EQ(dialog.Slider(), test.slider) << testing::PrintToString(test.typed);
  }
}

TEST_F(SpeedLimitDialogTest, OkTakesWhatWasTyped) {
  const struct {
    const wchar_t* typed;
    uint32_t limit;
  } cases[] = {{L"300", 300},  {L"010", 8},   {L"0x10", 16},
               {L"0", 0},      {L"77", 77},   {L"", 0},
               {L"12 ab", 12}, {L"words", 0}, {L"1234567890", 123'456'789}};
  for (const auto& test : cases) {
    // A saved 999 shows whether anything was saved.
    const uint32_t before = app.maxDownloadSpeedKB;
    const DWORD mark = 999;
    RegSetKeyValueW(HKEY_CURRENT_USER, app.registryKeyPath.c_str(), kValue, REG_DWORD, &mark, sizeof mark);
    const SpeedLimit dialog(window_);
    dialog.Type(SPEED_EDIT, test.typed);
    dialog.Click(IDOK);
    ASSERT_TRUE(dialog.WaitUntilClosed());
    EXPECT_EQ(app.maxDownloadSpeedKB, test.limit) << testing::PrintToString(test.typed);
    EXPECT_EQ(SavedLimit(), before == test.limit ? mark : test.limit) << testing::PrintToString(test.typed);
  }
}

TEST_F(SpeedLimitDialogTest, ResetOnlyEmptiesTheDialog) {
  SetLimit(2500);
  const SpeedLimit dialog(window_);
  dialog.Type(SPEED_EDIT, L"95000");
  dialog.Click(SPEED_RESET);
  EXPECT_EQ(dialog.Edit(), L"");
  EXPECT_EQ(dialog.Slider(), 0);
  EXPECT_TRUE(IsWindowVisible(dialog.Window()));
  EXPECT_EQ(app.maxDownloadSpeedKB, 2500u);
  EXPECT_EQ(SavedLimit(), std::nullopt);
  // The scale is that of the limit that is still in effect.
  dialog.Drag(50);
  EXPECT_EQ(dialog.Edit(), L"5000");
  dialog.Release();

  dialog.Click(SPEED_RESET);
  dialog.Click(IDOK);
  ASSERT_TRUE(dialog.WaitUntilClosed());
  EXPECT_EQ(app.maxDownloadSpeedKB, 0u);
  EXPECT_EQ(app.speedLimitBytes, 0u);
  EXPECT_EQ(SavedLimit(), 0u);
}

}  // namespace
