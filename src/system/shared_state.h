// What threads share without locks: single words, values that are replaced whole, the wish to stop.
#pragma once

#include <atomic>
#include <memory>
#include <stop_token>
#include <utility>

// One word. Reads and writes are relaxed: readers poll it, nothing else is ordered by it, so it must not tell that
// other data is ready.
template <typename T>
class SharedWord {
 public:
  SharedWord() = default;
  explicit SharedWord(T value) : value_(value) {}
  SharedWord& operator=(T value) {
    value_.store(value, std::memory_order_relaxed);
    return *this;
  }
  operator T() const { return value_.load(std::memory_order_relaxed); }
  void Add(T amount) { value_.fetch_add(amount, std::memory_order_relaxed); }

 private:
  std::atomic<T> value_{};
};

// One word that tells that other data is ready: what a thread wrote before it, whoever reads it sees.
template <typename T>
class PublishingWord {
 public:
  PublishingWord& operator=(T value) {
    value_.store(value, std::memory_order_release);
    return *this;
  }
  operator T() const { return value_.load(std::memory_order_acquire); }

 private:
  std::atomic<T> value_{};
};

// A larger value. Writers replace it whole; a reader keeps the value it got, whatever is written meanwhile.
template <typename T>
class SharedValue {
 public:
  std::shared_ptr<const T> Get() const { return value_.load(); }
  void Set(T value) { value_.store(std::make_shared<const T>(std::move(value))); }

 private:
  std::atomic<std::shared_ptr<const T>> value_{std::make_shared<const T>()};
};

// The wish to stop, uttered once and never taken back. It can be polled, and who waits for something else is woken by
// it.
class StopWish {
 public:
  void Utter() { source_.request_stop(); }
  operator bool() const { return source_.stop_requested(); }
  std::stop_token Token() const { return source_.get_token(); }

 private:
  std::stop_source source_;
};
