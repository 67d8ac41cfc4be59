// Whether and when a transfer that failed is tried once more. The same for the manifest, packages and the self-update.
#pragma once

#include <cstdint>
#include <stop_token>

#include "net/http_result.h"
#include "net/patience.h"

struct RetryRules {
  static constexpr uint32_t kForEver = UINT32_MAX;

  uint32_t most = kForEver;              // retries in a row that lead no further
  uint32_t pauseMs = kPatience.pauseMs;  // before each
  uint32_t mostRepeats = kForEver;       // answers in a row that begin anew and lead no further: the last is enough
};

class Retries {
 public:
  // `reached` is where the first attempt begins.
  explicit Retries(const RetryRules& rules, uint64_t reached = 0) : rules_(rules), farthest_(reached) {}

  // To be asked after every attempt. `reached` is how many bytes of the file or document are there now. True when a
  // brief outage, or an answer that was cut short, may be over with the next attempt.
  bool AnotherAfter(const HttpResult& attempt, uint64_t reached);

  // Waits before a retry. False when `stop` came first.
  bool Pause(const std::stop_token& stop) const;

 private:
  RetryRules rules_;
  uint32_t fruitless_ = 0;
  uint32_t repeats_ = 0;
  uint64_t farthest_;
};
