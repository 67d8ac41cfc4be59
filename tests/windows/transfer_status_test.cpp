#include "install/transfer_status.h"

#include <gtest/gtest.h>

#include "app/context.h"
#include "support/test_window.h"

namespace {

class TransferStatusTest : public testing::Test {
 protected:
  TransferStatusTest() { Reset(); }
  ~TransferStatusTest() override {
    Reset();
    app.cancelRequested = false;
    app.speedLimitBytes = 0;
  }

  static void Reset() {
    transferStatus.downloadTotal = 0;
    transferStatus.downloadedBefore = 0;
    transferStatus.currentFileBytes = 0;
    transferStatus.lastTickBytes = 0;
    for (auto& sample : transferStatus.speedSamples) sample = 0;
    transferStatus.sampleIndex = 0;
    transferStatus.currentSpeed = 0;
    transferStatus.retryCount = 0;
    transferStatus.hashing = false;
    transferStatus.lastHashPercent = 0;
    transferStatus.timerArmed = false;
  }

  static void Tick() { OnSpeedTimer(app.mainWindow, WM_TIMER, 2022, 0); }
};

}  // namespace

TEST_F(TransferStatusTest, DownloadMovesTheBarOfTheWholeRun) {
  const TestWindow window;
  transferStatus.downloadTotal = 1000;
  transferStatus.downloadedBefore = 250;
  app.speedLimitBytes = 5120;

  DownloadProgress progress;
  OnDownloadProgress(&progress);
  EXPECT_EQ(progress.speedLimit, 5120u);
  EXPECT_EQ(PositionOf(window.Installation().packageProgress), 0) << "nothing has arrived";

  progress.downloaded = 500;
  OnDownloadProgress(&progress);
  EXPECT_EQ(transferStatus.currentFileBytes, 500u);
  EXPECT_EQ(PositionOf(window.Installation().packageProgress), 750);
  EXPECT_FALSE(progress.cancel);

  transferStatus.downloadTotal = 0;
  OnDownloadProgress(&progress);
  EXPECT_EQ(PositionOf(window.Installation().packageProgress), 0) << "a run without sizes";

  app.cancelRequested = true;
  progress.downloaded = 900;
  OnDownloadProgress(&progress);
  EXPECT_TRUE(progress.cancel);
  EXPECT_EQ(transferStatus.currentFileBytes, 500u);
}

TEST_F(TransferStatusTest, HashingShowsEachPercentageOnce) {
  const TestWindow window;
  const Label& detail = window.Installation().packageDetailLabel;
  detail.SetText(L"before");

  HashProgress progress;
  OnHashProgress(&progress);
  EXPECT_EQ(TextOf(detail), L"before");
  progress.percent = 41;
  OnHashProgress(&progress);
  EXPECT_EQ(TextOf(detail), L"Checking downloaded file (41%)");
  detail.SetText(L"not again");
  OnHashProgress(&progress);
  EXPECT_EQ(TextOf(detail), L"not again");

  app.cancelRequested = true;
  progress.percent = 42;
  OnHashProgress(&progress);
  EXPECT_TRUE(progress.cancel);
  EXPECT_EQ(TextOf(detail), L"not again");
}

TEST_F(TransferStatusTest, SpeedLineFollowsTheTicks) {
  const TestWindow window;
  const Label& detail = window.Installation().packageDetailLabel;
  transferStatus.downloadTotal = 5000;
  transferStatus.downloadedBefore = 1000;
  struct Step {
    uint64_t fileBytes;
    uint32_t retries;
    bool hashing;
    uint64_t speed;
    const wchar_t* line;
    uint32_t retriesAfter;
  };
  const Step steps[] = {
      {0, 0, false, 0, L"-", 0},    // nothing has arrived yet
      {300, 4, false, 0, L"-", 4},  // takes a base only
      {600, 4, false, 100, L"Speed: 100 bytes/s (1.56 KB / 4.88 KB)", 0},
      {900, 0, false, 200, L"Speed: 200 bytes/s (1.85 KB / 4.88 KB)", 0},
      {900, 1, false, 200, L"Speed: 200 bytes/s (1.85 KB / 4.88 KB)", 0},
      {900, 2, false, 100, L"Speed: 100 bytes/s (1.85 KB / 4.88 KB)", 0},
      {900, 3, false, 0, L"Bad Internet connection. Retrying.. (3)", 3},
      {900, 4, false, 0, L"Bad Internet connection. Retrying.. (4)", 4},
      {1200, 5, false, 100, L"Speed: 100 bytes/s (2.14 KB / 4.88 KB)", 0},
      {1500, 1, true, 200, L"Speed: 100 bytes/s (2.14 KB / 4.88 KB)", 1},  // hashing owns the line
      {60, 0, false, 220, L"Speed: 220 bytes/s (1.03 KB / 4.88 KB)", 0},   // the file was begun anew
  };
  detail.SetText(L"-");
  for (const Step& step : steps) {
    SCOPED_TRACE(testing::Message() << "step " << &step - steps);
    transferStatus.currentFileBytes = step.fileBytes;
    transferStatus.retryCount = step.retries;
    transferStatus.hashing = step.hashing;
    Tick();
    EXPECT_EQ(transferStatus.currentSpeed, step.speed);
    EXPECT_EQ(TextOf(detail), step.line);
    EXPECT_EQ(transferStatus.retryCount, step.retriesAfter);
  }
}

TEST_F(TransferStatusTest, NothingNeedsAPage) {
  transferStatus.lastTickBytes = 1;
  transferStatus.currentFileBytes = 4;
  Tick();
  DownloadProgress download;
  download.downloaded = 7;
  OnDownloadProgress(&download);
  HashProgress hash;
  hash.percent = 7;
  OnHashProgress(&hash);
  ArmSpeedTimer();
  StopSpeedTimer();
  EXPECT_EQ(transferStatus.currentSpeed, 1u);
  EXPECT_EQ(transferStatus.currentFileBytes, 7u);
  EXPECT_FALSE(transferStatus.timerArmed);
}

TEST_F(TransferStatusTest, WorkerArmsATimerOfTheWindowsThread) {
  const TestWindow window;
  transferStatus.currentFileBytes = 77;
  ArmSpeedTimer();
  EXPECT_TRUE(transferStatus.timerArmed);
  const ULONGLONG start = GetTickCount64();
  while (transferStatus.lastTickBytes != 77 && GetTickCount64() < start + 10'000) Sleep(10);
  EXPECT_EQ(transferStatus.lastTickBytes, 77u);

  StopSpeedTimer();
  EXPECT_FALSE(transferStatus.timerArmed) << "only a timer that existed can be stopped";
  BOOL stillThere = TRUE;
  window.Run([&] { stillThere = KillTimer(window.Window(), 2022); });
  EXPECT_FALSE(stillThere);
}
