// What takes a player half a minute takes a test two seconds.
#include "net/patience.h"

const Patience kPatience{.silenceMs = 2000, .pauseMs = 50, .retries = 60};
