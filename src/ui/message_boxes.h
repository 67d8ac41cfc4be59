// The message boxes that several places show, and the texts that errors have in them. Each box runs on the calling
// thread, which must have its language set, and returns when it is answered; unless said otherwise the main window owns
// it. An error is a Win32 or WinINet code, 0 for none.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

// "Error: <code>\n", the system's description of the code and "\n" if it has one, then `extra`; only `extra` when there
// is no error.
std::wstring FormatErrorMessage(uint32_t error, const std::wstring& extra);

// MessageBoxW owned by the main window, which shows before what its mailbox holds.
int ShowBox(const std::wstring& text, const std::wstring& caption, UINT type);

// The packages list can't be had.
void ShowManifestError(uint32_t error);

// The Internet can't be reached.
void ShowConnectionHint();

// A file or the disk is corrupt.
void ShowCorruptDiskMessage();

// What became of app.tmpPath: it was there or could be created; it was created after its permissions were repaired; it
// could not be created, and the user was told.
enum class TempFolder { Ready, Repaired, Missing };

// Makes sure that app.tmpPath exists, offering to repair its permissions.
TempFolder EnsureTempFolder();

// Offers to open the page with the latest version (the default page when `address` is empty), telling the error that
// led there. While an update is in progress the program closes afterwards, whatever the answer.
void PromptDownloadLatest(const std::wstring& address, uint32_t error);

// Starts a program in its own folder without waiting for it, elevated or normally. True when it was started; otherwise,
// with `reportFailure`, a box has told why.
bool RunProcess(bool elevated, bool reportFailure, const std::wstring& file, const std::wstring& parameters);
