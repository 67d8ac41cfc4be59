// Progress on a terminal; nothing where standard error is none.
#pragma once

#include "disk.h"

// Rewrites one line of standard error, a few times a second.
Progress TerminalProgress();

// Takes that line away.
void ClearProgress();
