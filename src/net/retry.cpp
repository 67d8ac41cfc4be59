#include "net/retry.h"

#include <algorithm>

#include "system/threads.h"

bool Retries::AnotherAfter(const HttpResult& attempt, uint64_t reached) {
  const bool ledFurther = reached > farthest_;
  if (ledFurther) {
    farthest_ = reached;
    fruitless_ = repeats_ = 0;
  } else {
    ++fruitless_;
    if (attempt.received != 0 && !first_) ++repeats_;
  }
  first_ = false;
  if (attempt.cancelled || !(IsRetryableNetworkError(attempt.error) || attempt.cutShort)) return false;
  return fruitless_ <= rules_.most && repeats_ <= rules_.mostRepeats;
}

bool Retries::Pause(const std::stop_token& stop) const { return SleepUnlessStopped(rules_.pauseMs, stop); }
