// The user's choices, kept as values under HKEY_CURRENT_USER\app.registryKeyPath. UI thread only. Every write is
// one value, at once; a failed write is silent and leaves the value in memory as it is.
#pragma once

#include <cstdint>

// Reads all values into `app` (with defaults for what is missing or unreadable), settles app.uuid, app.manifestPath
// and app.uiLanguage. Never fails.
void LoadSettings();

// Sets app.maxDownloadSpeedKB and what follows from it, app.speedLimitBytes; a limit beyond 4 GiB/s stays there. The
// next chunk of a running download keeps to it.
void SetSpeedLimit(uint32_t kilobytesPerSecond);

void SaveLanguage();
void SaveDeleteTmpFiles();
void SaveMaxDownloadSpeed();
void SaveLastInstallPath();
void SaveLastTmpPath();
