// Keeping the computer from falling asleep.
#pragma once

#include <windows.h>

// While it lives the computer doesn't fall asleep for want of a user; the screen may go dark. It must be destroyed on
// the thread that made it.
class Wakefulness {
 public:
  Wakefulness() { SetThreadExecutionState(ES_CONTINUOUS | ES_SYSTEM_REQUIRED); }
  ~Wakefulness() { SetThreadExecutionState(ES_CONTINUOUS); }
  Wakefulness(const Wakefulness&) = delete;
  Wakefulness& operator=(const Wakefulness&) = delete;
};
