// Replacing this program by the one that the manifest announces.
#pragma once

#include "manifest/manifest_model.h"

// Downloads the announced program, checks it, puts it into the place of this one and asks the main window to close
// and relaunch. Returns when that is under way; when it failed and the user was told where to get it by hand, which
// closes the program, too; or silently when the window was closed meanwhile or the dialog can't be shown. Manifest
// thread, which has set app.updateInProgress.
void RunSelfUpdate(const UpdaterInfo& announced);
