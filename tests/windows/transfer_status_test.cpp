#include "install/transfer_status.h"

#include <gtest/gtest.h>

#include "app/context.h"
#include "support/test_window.h"

class TransferStatusTest : public testing::Test {
 protected:
  const TestWindow window_;
  const InstallPageControls& page_ = window_.Installation();
};

TEST_F(TransferStatusTest, ProgressMovesTheBarOfTheWholeRunUntilTheUserCancels) {
  transferStatus.downloadTotal = 1000;
  transferStatus.downloadedBefore = 250;
  app.speedLimitBytes = 5120;
  DownloadProgress download;
  download.downloaded = 500;
  OnDownloadProgress(&download);
  EXPECT_EQ(download.speedLimit, 5120u);
  EXPECT_EQ(PositionOf(page_.packageProgress), 750);
  HashProgress hash;
  hash.percent = 41;
  OnHashProgress(&hash);
  EXPECT_EQ(TextOf(page_.packageDetailLabel), L"Checking downloaded file (41%)");
  EXPECT_FALSE(download.cancel || hash.cancel);
  app.cancelRequested = true;
  OnDownloadProgress(&download);
  OnHashProgress(&hash);
  EXPECT_TRUE(download.cancel && hash.cancel);
}

TEST_F(TransferStatusTest, SpeedLineFollowsTheTicks) {
  transferStatus.downloadTotal = 5000;
  transferStatus.downloadedBefore = 1000;
  const struct {
    uint64_t fileBytes;
    uint32_t retries;
    bool hashing;
    const wchar_t* line;
    uint32_t retriesAfter;
  } ticks[] = {
      {300, 4, false, L"", 4},  // takes a base only
      {600, 4, false, L"Speed: 100 bytes/s (1.56 KB / 4.88 KB)", 0},
      {900, 0, false, L"Speed: 200 bytes/s (1.85 KB / 4.88 KB)", 0},
      {900, 1, false, L"Speed: 200 bytes/s (1.85 KB / 4.88 KB)", 0},
      {900, 0, false, L"Speed: 100 bytes/s (1.85 KB / 4.88 KB)", 0},
      {900, 3, false, L"Bad Internet connection. Retrying.. (3)", 3},
      {1200, 4, true, L"Bad Internet connection. Retrying.. (3)", 4},  // hashing owns the line
      {60, 0, false, L"Speed: 120 bytes/s (1.03 KB / 4.88 KB)", 0},    // the file was begun anew
  };
  for (const auto& tick : ticks) {
    transferStatus.currentFileBytes = tick.fileBytes;
    transferStatus.retryCount = tick.retries;
    transferStatus.hashing = tick.hashing;
    OnSpeedTimer(nullptr, 0, 0, 0);
    EXPECT_EQ(TextOf(page_.packageDetailLabel), tick.line);
    EXPECT_EQ(transferStatus.retryCount, tick.retriesAfter) << testing::PrintToString(tick.line);
  }
}
