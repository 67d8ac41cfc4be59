// The message boxes that several places show. Each is owned by the main window, runs on the calling thread, which
// must have its language set, and returns when it is answered.
#pragma once

#include <windows.h>

#include <string>

// MessageBoxW owned by the main window.
int ShowBox(const std::wstring& text, const std::wstring& caption, UINT type);

// The packages list can't be had. Reads the thread's last error.
void ShowManifestError();

// The Internet can't be reached.
void ShowConnectionHint();

// A file or the disk is corrupt.
void ShowCorruptDiskMessage();

// Makes sure that app.tmpPath exists, offering to repair its permissions. 1: it exists or was created; 2: it was
// created after a repair; 0: it could not be created, and the user was told.
int EnsureTempFolder();

// Offers to open the page with the latest version (the default page when `address` is empty). Reads the thread's last
// error. While an update is in progress the program closes afterwards, whatever the answer.
void PromptDownloadLatest(const std::wstring& address);
