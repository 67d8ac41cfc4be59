#include "net/speed_limiter.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

struct Chunk {
  uint64_t now;
  uint32_t bytes, limit;
  uint32_t pause;  // expected
};

void Replay(const std::vector<Chunk>& chunks) {
  SpeedLimiter limiter;
  for (size_t i = 0; i < chunks.size(); ++i) {
    const Chunk& chunk = chunks[i];
    EXPECT_EQ(limiter.OnChunk(chunk.bytes, chunk.limit, chunk.now), chunk.pause) << "chunk " << i;
  }
}

}  // namespace

TEST(SpeedLimiter, NeverPausesWithoutLimit) { Replay({{5000, 4096, 0, 0}, {5000, 4'000'000'000, 0, 0}}); }

TEST(SpeedLimiter, PausesUntilTheSecondIsOver) {
  // Three chunks are the first ones above the limit; the one after the pause opens a new second.
  Replay({{5000, 4096, 10240, 0},
          {5010, 4096, 10240, 0},
          {5020, 4096, 10240, 980},
          {6000, 4096, 10240, 0},
          {6100, 4096, 10240, 0},
          {6100, 4096, 10240, 900}});
}

TEST(SpeedLimiter, LimitItselfMayBeReached) { Replay({{0, 4096, 8192, 0}, {0, 4096, 8192, 0}, {0, 1, 8192, 1000}}); }

TEST(SpeedLimiter, LimitBelowAChunkPausesAfterEach) {
  Replay({{5000, 4096, 1024, 1000}, {6000, 4096, 1024, 1000}, {7000, 4096, 1024, 1000}});
}

TEST(SpeedLimiter, SlowTransferOpensANewSecondEachTime) {
  Replay({{5000, 4096, 4096, 0}, {5999, 4096, 4096, 1}, {6000, 4096, 4096, 0}, {7000, 4096, 4096, 0}});
}

TEST(SpeedLimiter, WakingEarlyStaysInTheSecond) {
  Replay({{5000, 4096, 1024, 1000}, {5990, 4096, 8192, 0}, {5995, 8192, 8192, 5}});
}

TEST(SpeedLimiter, KeepsItsSecondWhileTheLimitIsOff) {
  Replay({{5000, 4096, 5000, 0}, {5100, 9999, 0, 0}, {5200, 4096, 5000, 800}});
}
