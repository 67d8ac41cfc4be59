// The arithmetic of a download speed limit. No Windows header: also built natively.
#pragma once

#include <cstdint>

// Counts bytes per interval of one second and tells when the transfer has to pause.
class SpeedLimiter {
 public:
  // To be called after each stored chunk. Returns the milliseconds to sleep now (0 to 1000).
  // `limit` is in bytes per second, 0 = none; `now` in milliseconds of a clock that never goes back.
  uint32_t OnChunk(uint32_t bytes, uint32_t limit, uint64_t now);

 private:
  uint64_t intervalEnd_ = 0;
  uint32_t bytesInInterval_ = 0;
};
