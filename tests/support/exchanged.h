// Puts another value into a place while it lives; tests exchange entry points with it.
#pragma once

#include <utility>

template <typename T>
class Exchanged {
 public:
  Exchanged(T& place, T value) : place_(place), original_(std::exchange(place, value)) {}
  ~Exchanged() { place_ = original_; }
  Exchanged(const Exchanged&) = delete;
  Exchanged& operator=(const Exchanged&) = delete;

 private:
  T& place_;
  T original_;
};
