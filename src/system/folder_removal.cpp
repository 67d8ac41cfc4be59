#include "system/folder_removal.h"

#include <shlwapi.h>
#include <windows.h>

#include "system/handles.h"
#include "system/path_names.h"

namespace {

bool IsDotName(const wchar_t* name) {
  return name[0] == L'.' && (name[1] == L'\0' || (name[1] == L'.' && name[2] == L'\0'));
}

void MakeWritable(const std::wstring& path, DWORD attributes) {
  if (attributes & FILE_ATTRIBUTE_READONLY) SetFileAttributesW(path.c_str(), attributes & ~FILE_ATTRIBUTE_READONLY);
}

uint32_t RemoveEntry(const std::wstring& path, DWORD attributes);

// The error of the first entry that stays.
uint32_t RemoveContents(const std::wstring& folder) {
  WIN32_FIND_DATAW entry;
  const FindHandle find(FindFirstFileW(JoinPath(folder, L"*").c_str(), &entry));
  if (!find) return GetLastError();
  uint32_t error = ERROR_SUCCESS;
  do {
    if (IsDotName(entry.cFileName)) continue;
    const uint32_t failure = RemoveEntry(JoinPath(folder, entry.cFileName), entry.dwFileAttributes);
    if (error == ERROR_SUCCESS) error = failure;
  } while (FindNextFileW(find.Get(), &entry));
  return error;
}

uint32_t RemoveEntry(const std::wstring& path, DWORD attributes) {
  const bool isFolder = attributes & FILE_ATTRIBUTE_DIRECTORY;
  const bool isLink = attributes & FILE_ATTRIBUTE_REPARSE_POINT;
  const uint32_t error = isFolder && !isLink ? RemoveContents(path) : ERROR_SUCCESS;
  MakeWritable(path, attributes);
  if (isFolder ? RemoveDirectoryW(path.c_str()) : DeleteFileW(path.c_str())) return ERROR_SUCCESS;
  const DWORD failure = GetLastError();
  return error != ERROR_SUCCESS ? error : failure;  // not that the folder isn't empty, but why
}

// A drive's root, a share's, or a folder that another volume is mounted on.
bool IsVolumeRoot(const std::wstring& fullPath) {
  wchar_t volume[MAX_PATH];
  if (!GetVolumePathNameW(fullPath.c_str(), volume, MAX_PATH)) return true;
  return lstrcmpiW(JoinPath(fullPath, L"").c_str(), JoinPath(volume, L"").c_str()) == 0;
}

// Without "." and ".."; empty when it is too long.
std::wstring FullPath(const std::wstring& path) {
  wchar_t full[MAX_PATH];
  const DWORD length = GetFullPathNameW(path.c_str(), MAX_PATH, full, nullptr);
  return length < MAX_PATH ? std::wstring(full, length) : std::wstring();
}

// The form that has no limit of length, because what lies below the path may be deeper than MAX_PATH.
std::wstring UnlimitedForm(const std::wstring& fullPath) {
  return fullPath.starts_with(L"\\\\") ? L"\\\\?\\UNC" + fullPath.substr(1) : L"\\\\?\\" + fullPath;
}

}  // namespace

uint32_t RemoveFolder(const std::wstring& path) {
  if (path.empty() || PathIsRelativeW(path.c_str())) return ERROR_BAD_PATHNAME;
  const std::wstring fullPath = FullPath(path);
  if (fullPath.empty()) return ERROR_BAD_PATHNAME;
  if (IsVolumeRoot(fullPath)) return ERROR_DIR_NOT_ROOT;
  const DWORD attributes = GetFileAttributesW(fullPath.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return ERROR_SUCCESS;
  if (!(attributes & FILE_ATTRIBUTE_DIRECTORY)) return ERROR_DIRECTORY;
  return RemoveEntry(UnlimitedForm(fullPath), attributes);
}
