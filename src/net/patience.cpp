#include "net/patience.h"

const Patience kPatience{.silenceMs = 30'000, .pauseMs = 1000, .retries = 60};
