#include "app/update_dialog.h"

#include <gtest/gtest.h>
#include <windows.h>
// commctrl.h needs windows.h before it.
#include <commctrl.h>

#include "app/context.h"
#include "app/localization.h"
#include "support/test_window.h"
#include "system/files.h"

namespace {

// The dialog belongs to the test's thread, as it belongs to the manifest thread in the program.
class UpdateDialogTest : public testing::Test {
 protected:
  ~UpdateDialogTest() override { DestroyWindow(dialog_); }

  void Create(uint32_t announcedSize) { dialog_ = CreateUpdateDialog(announcedSize); }
  std::wstring Text(int id) const { return TextOf(GetDlgItem(dialog_, id)); }
  int Percent() const { return static_cast<int>(SendDlgItemMessageW(dialog_, UPDATE_PROGRESS, PBM_GETPOS, 0, 0)); }

  TestWindow window_{NoPage};
  HWND dialog_ = nullptr;
};

TEST_F(UpdateDialogTest, ShowsSizesAndProgress) {
  const uint64_t gigabyte = uint64_t{1} << 30;
  const struct {
    const char* what;
    uint32_t announced;
    DownloadProgress progress;
    uint64_t totalAfter;
    uint64_t shownTotal;  // 0: no text
    int percent;
  } cases[] = {
      {"nothing known yet", 0, {}, 0, 0, 0},
      {"announced by the manifest", 3000, {}, 3000, 3000, 0},
      {"the larger size counts", 3000, {.total = 5000}, 5000, 5000, 0},
      {"the larger size counts", 5000, {.total = 3000}, 5000, 5000, 0},
      {"the manifest no longer counts", 5000, {.transferStartTick = 1, .total = 300, .downloaded = 99}, 300, 0, 33},
      {"truncated", 0, {.transferStartTick = 1, .total = 1000, .downloaded = 999}, 1000, 0, 99},
      {"complete", 0, {.transferStartTick = 1, .total = 1000, .downloaded = 1000}, 1000, 0, 100},
      {"more than announced", 0, {.transferStartTick = 1, .total = 10, .downloaded = 4000}, 10, 0, 100},
      {"unknown size", 0, {.transferStartTick = 1, .downloaded = 4000}, 0, 0, 0},
      {"large", 0, {.transferStartTick = 1, .total = 8 * gigabyte, .downloaded = 6 * gigabyte}, 8 * gigabyte, 0, 75},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.what);
    Create(test.announced);
    DownloadProgress progress = test.progress;
    OnUpdateDownloadProgress(&progress);
    EXPECT_EQ(progress.total, test.totalAfter);
    const std::wstring total = test.shownTotal ? FormatByteSize(static_cast<int64_t>(test.shownTotal)) : L"";
    EXPECT_EQ(Text(UPDATE_TOTAL), total);
    EXPECT_EQ(Text(UPDATE_RECEIVED), FormatByteSize(static_cast<int64_t>(progress.downloaded)));
    EXPECT_EQ(Percent(), test.percent);
    EXPECT_FALSE(progress.cancel);
    DestroyWindow(dialog_);
  }
}

}  // namespace
