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

void RemoveEntry(const std::wstring& path, DWORD attributes);

void RemoveContents(const std::wstring& folder) {
  WIN32_FIND_DATAW entry;
  const FindHandle find(FindFirstFileW(JoinPath(folder, L"*").c_str(), &entry));
  if (!find) return;
  do {
    if (!IsDotName(entry.cFileName)) RemoveEntry(JoinPath(folder, entry.cFileName), entry.dwFileAttributes);
  } while (FindNextFileW(find.Get(), &entry));
}

void RemoveEntry(const std::wstring& path, DWORD attributes) {
  const bool isFolder = attributes & FILE_ATTRIBUTE_DIRECTORY;
  const bool isLink = attributes & FILE_ATTRIBUTE_REPARSE_POINT;
  if (isFolder && !isLink) RemoveContents(path);
  MakeWritable(path, attributes);
  if (isFolder) {
    RemoveDirectoryW(path.c_str());
  } else {
    DeleteFileW(path.c_str());
  }
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

void RemoveFolder(const std::wstring& path) {
  if (path.empty() || PathIsRelativeW(path.c_str())) return;
  const std::wstring fullPath = FullPath(path);
  if (fullPath.empty() || IsVolumeRoot(fullPath)) return;
  const DWORD attributes = GetFileAttributesW(fullPath.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || !(attributes & FILE_ATTRIBUTE_DIRECTORY)) return;
  RemoveEntry(UnlimitedForm(fullPath), attributes);
}
