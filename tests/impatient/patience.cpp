// What takes a player half a minute takes a test five seconds, also on a busy machine.
#include "net/patience.h"

const Patience kPatience{.silenceMs = 5000, .pauseMs = 50, .retries = 60};
