// How long the program waits for a server, and how often it asks again. The values are an object file of their own:
// a program for tests is this one linked with shorter times.
#pragma once

#include <cstdint>

struct Patience {
  uint32_t silenceMs;  // a line that says nothing for so long is broken
  uint32_t pauseMs;    // before a transfer is tried again
  uint32_t retries;    // of a package or an update, in a row, that lead no further
};

extern const Patience kPatience;
