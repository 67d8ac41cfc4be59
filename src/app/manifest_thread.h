// The thread that brings the packages manifest into the program at its start.
#pragma once

#include <windows.h>

// The thread's procedure; `parameter` is ignored. Reads a fresh cache or fetches the manifest, telling the user of
// failures; replaces the program where a new one is announced; fills the component list; starts the installation that
// this start's command line asked for.
DWORD WINAPI ManifestThreadProc(void* parameter);
