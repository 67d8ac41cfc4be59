// The worker: downloads and installs what app.installList names.
#pragma once

#include <windows.h>

// The worker's thread procedure; `parameter` is ignored.
DWORD WINAPI InstallThreadProc(void* parameter);

// One whole run. Everything it does shows on the installation page, in reports and in files.
void RunInstallation();
