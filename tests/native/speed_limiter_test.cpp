#include "net/speed_limiter.h"

#include <gtest/gtest.h>

#include <vector>

TEST(SpeedLimiter, PausesUntilTheSecondIsOver) {
  struct Chunk {
    uint64_t now;
    uint32_t bytes, limit, pause;
  };
  const std::pair<const char*, std::vector<Chunk>> transfers[] = {
      {"the chunk after the pause opens a new second",
       {{5000, 4096, 5000, 0}, {5020, 4096, 5000, 980}, {6000, 4096, 5000, 0}, {6100, 4096, 5000, 900}}},
      {"the limit itself may be reached", {{0, 4096, 8192, 0}, {0, 4096, 8192, 0}, {0, 1, 8192, 1000}}},
      {"a slow transfer", {{5000, 4096, 4096, 0}, {5999, 4096, 4096, 1}, {6000, 4096, 4096, 0}, {7000, 4096, 4096, 0}}},
      {"woken early", {{5000, 4096, 1024, 1000}, {5990, 4096, 8192, 0}, {5995, 8192, 8192, 5}}},
      {"the limit is off for a while", {{5000, 4096, 5000, 0}, {5100, 4'000'000'000, 0, 0}, {5200, 4096, 5000, 800}}},
  };
  for (const auto& [what, chunks] : transfers) {
    SpeedLimiter limiter;
    for (const auto& [now, bytes, limit, pause] : chunks) {
      EXPECT_EQ(limiter.OnChunk(bytes, limit, now), pause) << what << ", at " << now;
    }
  }
}
