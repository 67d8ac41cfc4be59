#include "install/transfer_status.h"

#include <gtest/gtest.h>

#include "app/context.h"
#include "support/test_window.h"

namespace {

class TransferStatusTest : public testing::Test {
 protected:
  const TestWindow window_;
  const Label& detail_ = window_.Installation().packageDetailLabel;
};

}  // namespace

TEST_F(TransferStatusTest, DownloadMovesTheBarOfTheWholeRun) {
  transferStatus.downloadTotal = 1000;
  transferStatus.downloadedBefore = 250;
  app.speedLimitBytes = 5120;
  DownloadProgress progress;
  OnDownloadProgress(&progress);
  EXPECT_EQ(progress.speedLimit, 5120u);
  progress.downloaded = 500;
  OnDownloadProgress(&progress);
  EXPECT_EQ(PositionOf(window_.Installation().packageProgress), 750);
  EXPECT_FALSE(progress.cancel);

  app.cancelRequested = true;
  OnDownloadProgress(&progress);
  EXPECT_TRUE(progress.cancel);
}

TEST_F(TransferStatusTest, HashingShowsEachPercentageOnce) {
  HashProgress progress;
  progress.percent = 41;
  OnHashProgress(&progress);
  EXPECT_EQ(TextOf(detail_), L"Checking downloaded file (41%)");
  detail_.SetText(L"not again");
  OnHashProgress(&progress);
  EXPECT_EQ(TextOf(detail_), L"not again");

  app.cancelRequested = true;
  OnHashProgress(&progress);
  EXPECT_TRUE(progress.cancel);
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
    EXPECT_EQ(TextOf(detail_), tick.line);
    EXPECT_EQ(transferStatus.retryCount, tick.retriesAfter) << testing::PrintToString(tick.line);
  }
}

TEST_F(TransferStatusTest, WorkerArmsATimerOfTheWindowsThread) {
  transferStatus.currentFileBytes = 77;
  ArmSpeedTimer();
  const ULONGLONG start = GetTickCount64();
  while (transferStatus.lastTickBytes != 77 && GetTickCount64() < start + 10'000) Sleep(10);
  EXPECT_EQ(transferStatus.lastTickBytes, 77u);
  StopSpeedTimer();
  EXPECT_FALSE(transferStatus.timerArmed) << "only a timer that existed can be stopped";
}
