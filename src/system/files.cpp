#include "system/files.h"

#include <shlobj.h>
#include <shlwapi.h>
#include <windows.h>

#include "system/handles.h"
#include "system/path_names.h"

namespace {

std::optional<WIN32_FILE_ATTRIBUTE_DATA> QueryFile(const std::wstring& path) {
  WIN32_FILE_ATTRIBUTE_DATA data = {};
  if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) return std::nullopt;
  return data;
}

uint64_t SizeOf(const WIN32_FILE_ATTRIBUTE_DATA& data) {
  return static_cast<uint64_t>(data.nFileSizeHigh) << 32 | data.nFileSizeLow;
}

}  // namespace

bool PathExists(const std::wstring& path) { return QueryFile(path).has_value(); }

bool FileExistsNonEmpty(const std::wstring& path) { return FileSize(path) != 0; }

uint64_t FileSize(const std::wstring& path) {
  const auto data = QueryFile(path);
  return data && !(data->dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) ? SizeOf(*data) : 0;
}

bool IsDirectory(const std::wstring& path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && attributes & FILE_ATTRIBUTE_DIRECTORY;
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
