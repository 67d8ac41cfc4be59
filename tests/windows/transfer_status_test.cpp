#include "install/transfer_status.h"

#include <gtest/gtest.h>

#include "support/test_window.h"

TEST(TransferStatus, SpeedLineFollowsTheTicks) {
  const TestWindow window;
  transferStatus.downloadTotal = 5000;
  transferStatus.downloadedBefore = 1000;
  const std::tuple<uint64_t, uint32_t, bool, const wchar_t*, uint32_t> ticks[] = {
      // Bytes of the file, retries, hashing; the line, the retries that are left.
      {300, 4, false, L"", 4},  // takes a base only
      {600, 4, false, L"Speed: 100 bytes/s (1.56 KB / 4.88 KB)", 0},
      {900, 0, false, L"Speed: 200 bytes/s (1.85 KB / 4.88 KB)", 0},
      {900, 1, false, L"Speed: 200 bytes/s (1.85 KB / 4.88 KB)", 0},
      {900, 0, false, L"Speed: 100 bytes/s (1.85 KB / 4.88 KB)", 0},
      {900, 3, false, L"Bad Internet connection. Retrying.. (3)", 3},
      {1200, 4, true, L"Bad Internet connection. Retrying.. (3)", 4},  // hashing owns the line
      {60, 0, false, L"Speed: 120 bytes/s (1.03 KB / 4.88 KB)", 0},    // the file was begun anew
  };
  for (const auto& [fileBytes, retries, hashing, line, retriesAfter] : ticks) {
    transferStatus.currentFileBytes = fileBytes;
    transferStatus.retryCount = retries;
    transferStatus.hashing = hashing;
    OnSpeedTimer(nullptr, 0, 0, 0);
    EXPECT_EQ(TextOf(window.Installation().packageDetailLabel), line);
    EXPECT_EQ(transferStatus.retryCount, retriesAfter) << testing::PrintToString(line);
  }
}
