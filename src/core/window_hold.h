// Whether a window that is to be closed must wait for work that may not be cut off.
#pragma once

#include <atomic>
#include <cstdint>

// The hold and the close requests are one word, so that of a request and the end of the hold exactly one sees the
// other: either the request finds the window free, or the holder learns of the request. What a thread wrote before
// either is seen by the other after it.
class WindowHold {
 public:
  // Holds the window. False when it was asked to close before: nothing is held then. Worker, self-update.
  bool Acquire() {
    uint32_t free = 0;
    return word_.compare_exchange_strong(free, kHeld, std::memory_order_acq_rel) || free == kHeld;
  }
  // Ends the hold. True when the window was asked to close meanwhile, which then has to be asked for once more.
  bool Release() { return (word_.fetch_and(~kHeld, std::memory_order_acq_rel) & ~kHeld) != 0; }

  // Counts a request to close. True when the window is held. UI thread.
  bool CountCloseRequest() { return (word_.fetch_add(kOneRequest, std::memory_order_acq_rel) & kHeld) != 0; }
  uint32_t CloseAttempts() const { return word_.load(std::memory_order_acquire) / kOneRequest; }
  bool IsHeld() const { return (word_.load(std::memory_order_acquire) & kHeld) != 0; }

 private:
  static constexpr uint32_t kHeld = 1, kOneRequest = 2;
  std::atomic<uint32_t> word_{0};
};
