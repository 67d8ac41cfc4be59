// Small questions to the file system, and the folders and bytes that several subsystems need.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

// A file or folder of that name exists.
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

// The user's folder of that CSIDL_... number; empty when there is none.
std::wstring SpecialFolder(int csidl);

// Windows' short byte-size text in the user's locale ("1.45 GB"); empty when the system can't format it. Any thread.
std::wstring FormatByteSize(uint64_t bytes);

// The path of a program or module in the system folder, where no planted one can take its place.
std::wstring SystemFilePath(const wchar_t* name);
