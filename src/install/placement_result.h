// The outcome of putting a package into its place.
#pragma once

#include <cstdint>

struct PlacementResult {
  bool ok = false;
  uint32_t error = 0;  // the system error that made it fail, 0 when there was none
};
