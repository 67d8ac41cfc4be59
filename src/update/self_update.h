// Replacing this program by the one that the manifest announces.
#pragma once

#include "manifest/manifest_model.h"

// Downloads the announced program, checks it, puts it into the place of this one and asks the main window to close
// and relaunch. Returns when that is under way, or when it failed and the user was told where to get it by hand.
// Runs on the thread that loads the manifest.
void RunSelfUpdate(const UpdaterInfo& announced);
