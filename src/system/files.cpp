#include "system/files.h"

#include <shlobj.h>
#include <shlwapi.h>
#include <windows.h>

#include "system/handles.h"
#include "system/path_names.h"
#include "system/threads.h"

namespace {

std::optional<WIN32_FILE_ATTRIBUTE_DATA> QueryFile(const std::wstring& path) {
  WIN32_FILE_ATTRIBUTE_DATA data = {};
  if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) return std::nullopt;
  return data;
}

uint64_t SizeOf(const WIN32_FILE_ATTRIBUTE_DATA& data) {
  return static_cast<uint64_t>(data.nFileSizeHigh) << 32 | data.nFileSizeLow;
}

int64_t Ticks(const FILETIME& time) {
  return static_cast<int64_t>(static_cast<uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime);
}

// 0 where nothing is there that could refuse.
uint32_t AskToWrite(const std::wstring& path) {
  constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const FileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
  const DWORD error = file ? ERROR_SUCCESS : GetLastError();
  return error == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : error;
}

// Puts a complete file into the place of another, which may be missing. What the old one had besides its content
// (attributes, permissions) stays where the system can take it over.
uint32_t TakePlace(const std::wstring& newPath, const std::wstring& path) {
  if (ReplaceFileW(path.c_str(), newPath.c_str(), nullptr, 0, nullptr, nullptr)) return ERROR_SUCCESS;
  // Where there was no old file, and where one failure has removed it already.
  if (MoveFileExW(newPath.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING)) return ERROR_SUCCESS;
  // Who looks at the old file meanwhile, a scanner for instance, may forbid to replace it but not to write to it.
  if (CopyFileW(newPath.c_str(), path.c_str(), FALSE)) return ERROR_SUCCESS;
  return GetLastError();
}

}  // namespace

uint32_t FindPath(const std::wstring& path) { return QueryFile(path) ? ERROR_SUCCESS : GetLastError(); }

bool PathExists(const std::wstring& path) { return FindPath(path) == ERROR_SUCCESS; }

bool FileExistsNonEmpty(const std::wstring& path) { return FileSize(path) != 0; }

uint64_t FileSize(const std::wstring& path) {
  const auto data = QueryFile(path);
  return data && !(data->dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) ? SizeOf(*data) : 0;
}

bool IsDirectory(const std::wstring& path) {
  const auto data = QueryFile(path);
  return data && data->dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY;
}

uint32_t CreateDirectories(const std::wstring& path) {
  if (IsDirectory(path)) return ERROR_SUCCESS;
  const std::wstring parent = ParentFolder(path);
  if (!parent.empty() && parent.size() < path.size()) {
    if (const uint32_t error = CreateDirectories(parent)) return error;
  }
  if (CreateDirectoryW(path.c_str(), nullptr)) return ERROR_SUCCESS;
  const DWORD error = GetLastError();
  // Another program may have made it meanwhile; and a path that ends in a separator was made by its parent.
  return IsDirectory(path) ? ERROR_SUCCESS : error;
}

std::optional<std::string> ReadWholeFile(const std::wstring& path) {
  const FileHandle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) return std::nullopt;
  std::string bytes;
  char chunk[4096];
  DWORD count = 0;
  do {
    if (!ReadFile(file.Get(), chunk, sizeof chunk, &count, nullptr)) return std::nullopt;
    bytes.append(chunk, count);
  } while (count != 0);
  return bytes;
}

uint32_t HoldFile(const std::wstring& path, FileHandle& held, const std::stop_token& stop) {
  constexpr int kTries = 20;
  constexpr uint32_t kPauseMs = 100;
  for (int i = 1;; ++i) {
    held.Reset(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                           nullptr));
    const DWORD error = held ? DWORD{ERROR_SUCCESS} : GetLastError();
    if (error != ERROR_SHARING_VIOLATION || i == kTries) return error;
    if (!SleepUnlessStopped(kPauseMs, stop)) return error;
  }
}

std::optional<int64_t> FileAgeSeconds(const std::wstring& path) {
  const auto data = QueryFile(path);
  if (!data) return std::nullopt;
  FILETIME now;
  GetSystemTimeAsFileTime(&now);
  constexpr int64_t kTicksPerSecond = 10'000'000;
  return (Ticks(now) - Ticks(data->ftLastWriteTime)) / kTicksPerSecond;
}

bool RemoveProtection(const std::wstring& path) {
  constexpr DWORD kProtecting = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
  const auto data = QueryFile(path);
  return data && data->dwFileAttributes & kProtecting &&
         SetFileAttributesW(path.c_str(), data->dwFileAttributes & ~kProtecting);
}

uint32_t WriteWholeFile(const std::wstring& path, const std::string& bytes, uint32_t attributes) {
  const FileHandle file(
      CreateFileW(path.c_str(), FILE_GENERIC_WRITE, FILE_SHARE_WRITE, nullptr, CREATE_ALWAYS, attributes, nullptr));
  DWORD written = 0;
  if (!file || !WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr)) {
    return GetLastError();
  }
  return written == bytes.size() ? ERROR_SUCCESS : ERROR_DISK_FULL;
}

uint32_t ReplaceFileContent(const std::wstring& path, const std::string& bytes) {
  if (const uint32_t error = AskToWrite(path)) return error;
  const std::wstring newPath = path + L".new";
  uint32_t error = WriteWholeFile(newPath, bytes, FILE_ATTRIBUTE_NORMAL);
  const bool whole = error == ERROR_SUCCESS;
  if (whole) error = TakePlace(newPath, path);
  if (!whole || PathExists(path)) DeleteFileW(newPath.c_str());  // otherwise it is all there is
  return error;
}

std::wstring SpecialFolder(int csidl) {
  wchar_t path[MAX_PATH];
  return SHGetFolderPathW(nullptr, csidl, nullptr, SHGFP_TYPE_CURRENT, path) == S_OK ? path : L"";
}

std::wstring FormatByteSize(uint64_t bytes) {
  wchar_t text[20];
  return StrFormatByteSizeW(static_cast<LONGLONG>(bytes), text, ARRAYSIZE(text)) ? text : L"";
}

std::wstring SystemFilePath(const wchar_t* name) {
  wchar_t folder[MAX_PATH] = {};
  GetSystemDirectoryW(folder, MAX_PATH);
  return JoinPath(folder, name);
}
