// The user's choices, kept as values under HKEY_CURRENT_USER\app.registryKeyPath. UI thread only. Every write is
// one value, at once; a failed write is silent and leaves the value in memory as it is.
#pragma once

// Reads all values into `app` (with defaults for what is missing or unreadable), settles app.uuid, app.manifestPath
// and app.uiLanguage. Never fails.
void LoadSettings();

void SaveLanguage();
void SaveDeleteTmpFiles();
void SaveMaxDownloadSpeed();
void SaveLastInstallPath();
void SaveLastTmpPath();
