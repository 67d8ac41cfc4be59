// Getting the packages manifest, from the repository or from a recent cache.
#pragma once

#include <windows.h>

#include <string>

// Asks the repository for the manifest into manifestBuffer. True when at least one byte arrived; otherwise the thread's
// last error tells why not. Manifest thread or worker.
bool FetchManifest();

// The repository's address with this installation's query.
std::wstring BuildManifestUrl();

// The manifest thread: loads the manifest and fills the component list; starts an installation that the command line
// asked for. `parameter` is ignored.
DWORD WINAPI ManifestThreadProc(void* parameter);
