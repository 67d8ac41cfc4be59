// Small questions to the file system, and the folders and bytes that several subsystems need.
#pragma once

#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>

#include "system/handles.h"

// Whether a file or folder of that name exists: 0, or the Win32 error of the look at it.
uint32_t FindPath(const std::wstring& path);
bool PathExists(const std::wstring& path);

// A file exists whose size is not 0.
bool FileExistsNonEmpty(const std::wstring& path);

// The file's size in bytes; 0 when it can't be queried.
uint64_t FileSize(const std::wstring& path);

// A folder of that name exists.
bool IsDirectory(const std::wstring& path);

// Creates the folder with all missing parents. Returns 0 when it exists afterwards, else the Win32 error code of
// the step that failed.
uint32_t CreateDirectories(const std::wstring& path);

// The whole file as bytes; nothing when it can't be opened or read.
std::optional<std::string> ReadWholeFile(const std::wstring& path);

// Opens a file for reading and keeps everybody else from writing, renaming and deleting it as long as the handle is
// open. Who looks at a file that has just been written, a scanner for instance, soon leaves it again: another program
// is waited for, two seconds at most or until the stop. Returns 0 or the Win32 error.
uint32_t HoldFile(const std::wstring& path, FileHandle& held, const std::stop_token& stop);

// Seconds since the file was last written, negative for a time to come; nothing when it can't be told.
std::optional<int64_t> FileAgeSeconds(const std::wstring& path);

// Takes the attributes from a file that keep it from being overwritten (read-only, hidden, system). True when it had
// any and could be changed.
bool RemoveProtection(const std::wstring& path);

// Creates or replaces a file with these bytes and attributes (FILE_ATTRIBUTE_...). Returns 0 or the Win32 error, after
// which the file may be there in part.
uint32_t WriteWholeFile(const std::wstring& path, const std::string& bytes, uint32_t attributes);

// Replaces a file's content, or creates it, so that whatever happens the old or the new content is there whole. Returns
// 0 or the Win32 error. A file that may not be written is left alone, also by an elevated process that could replace
// it.
uint32_t ReplaceFileContent(const std::wstring& path, const std::string& bytes);

// The user's folder of that CSIDL_... number; empty when there is none.
std::wstring SpecialFolder(int csidl);

// Windows' short byte-size text in the user's locale ("1.45 GB"); empty when the system can't format it. Any thread.
std::wstring FormatByteSize(uint64_t bytes);

// The path of a program or module in the system folder, where no planted one can take its place.
std::wstring SystemFilePath(const wchar_t* name);
