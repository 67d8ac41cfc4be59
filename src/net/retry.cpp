#include "net/retry.h"

#include <algorithm>

#include "system/threads.h"

bool Retries::AnotherAfter(const HttpResult& attempt, uint64_t reached) {
  const bool ledFurther = reached > farthest_;
  const bool repeated = !first_ && attempt.received != 0 && !ledFurther;
  first_ = false;
  farthest_ = std::max(farthest_, reached);
  if (attempt.cancelled || !(IsRetryableNetworkError(attempt.error) || attempt.cutShort)) return false;
  if (rules_.mustLeadFurther && repeated) return false;
  fruitless_ = ledFurther ? 0 : fruitless_ + 1;
  return fruitless_ <= rules_.most || rules_.most == RetryRules::kForEver;
}

bool Retries::Pause(const std::stop_token& stop) const { return SleepUnlessStopped(rules_.pauseMs, stop); }
