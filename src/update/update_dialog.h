// The window that shows how far a self-update is. Modeless; it belongs to the thread that creates it, which must serve
// its messages (system/threads.h). The other functions may run on any thread that has set its language; they don't wait
// for the dialog.
#pragma once

#include <windows.h>

#include <cstdint>

#include "net/http_client.h"

// Creates the dialog, owned by the main window and not shown yet; null when that fails. `announcedSize` is what the
// manifest says of the file, in bytes, 0 for unknown.
HWND CreateUpdateDialog(uint32_t announcedSize);

// One of the texts STR_... .
void ShowUpdateStatus(unsigned text);

// 0 to 100.
void ShowUpdateProgress(int percent);

// Empties the display of sizes and progress before another attempt.
void ClearUpdateDisplay();

// The progress callback of the download.
void OnUpdateDownloadProgress(DownloadProgress* progress);
