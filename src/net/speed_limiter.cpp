#include "net/speed_limiter.h"

uint32_t SpeedLimiter::OnChunk(uint32_t bytes, uint32_t limit, uint64_t now) {
  if (limit == 0) return 0;
  if (now >= intervalEnd_) {
    intervalEnd_ = now + 1000;
    bytesInInterval_ = 0;
  }
  bytesInInterval_ += bytes;
  if (bytesInInterval_ <= limit) return 0;
  // The interval ends with the sleep, so that the next chunk opens a new one.
  bytesInInterval_ = 0;
  return static_cast<uint32_t>(intervalEnd_ - now);
}
