#include "net/retry.h"

#include <algorithm>

#include "system/threads.h"

bool Retries::AnotherAfter(const HttpResult& attempt, uint64_t reached) {
  // Adding to what is there leads further, too, even where others were once in the place of these bytes.
  if (attempt.received != 0 && (attempt.received < reached || reached > farthest_)) {
    farthest_ = std::max(farthest_, reached);
    fruitless_ = repeats_ = 0;
  } else {
    ++fruitless_;
    if (attempt.received != 0) ++repeats_;
  }
  if (attempt.cancelled || !(IsRetryableNetworkError(attempt.error) || attempt.cutShort)) return false;
  return fruitless_ <= rules_.most && repeats_ < rules_.mostRepeats;
}

bool Retries::Pause(const std::stop_token& stop) const { return SleepUnlessStopped(rules_.pauseMs, stop); }
