// Where packages go when the user has not chosen a folder.
#pragma once

// Sets app.installPath to the first existing "Games" folder in the root of a drive, else to "Games" on the volume of
// the application data; leaves it as it is when that volume can't be found. UI thread.
void DefaultInstallPath();
