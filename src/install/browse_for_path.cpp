#include "install/browse_for_path.h"

#include <cderr.h>
#include <commdlg.h>
#include <shlobj.h>
#include <shlwapi.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "core/context.h"
#include "core/localization.h"
#include "core/settings.h"
#include "install/game_paths.h"
#include "system/com.h"
#include "system/files.h"
#include "system/path_names.h"
#include "ui/message_boxes.h"

namespace {

void ShowPickError(HWND owner, unsigned text) {
  MessageBoxW(owner, LoadLocalizedString(text).c_str(), LoadLocalizedString(STR_ERROR).c_str(), MB_ICONERROR);
}

// Makes `folder` the one that the dialog opens in; a text that is no folder is passed over.
void StartIn(IFileOpenDialog* dialog, const std::wstring& folder) {
  ComPointer<IShellItem> item;
  if (FAILED(SHCreateItemFromParsingName(folder.c_str(), nullptr, IID_PPV_ARGS(item.Receive())))) return;
  dialog->SetDefaultFolder(item.Get());
  dialog->SetFolder(item.Get());
}

// Empty for the shell's own folders, which are no place on a disk.
std::wstring FileSystemPath(IShellItem* item) {
  ComText path;
  return SUCCEEDED(item->GetDisplayName(SIGDN_FILESYSPATH, path.Receive())) ? path.Get() : L"";
}

// The system's folder picker. Nothing when it was cancelled or could not be shown.
std::optional<std::wstring> PickFolder(HWND owner, unsigned title, const std::wstring& startFolder) {
  ComPointer<IFileOpenDialog> dialog;
  if (FAILED(CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_ALL, IID_PPV_ARGS(dialog.Receive())))) return {};
  DWORD options = 0;
  if (FAILED(dialog->GetOptions(&options))) return {};
  dialog->SetOptions((options | FOS_PICKFOLDERS) & ~static_cast<DWORD>(FOS_PATHMUSTEXIST | FOS_FILEMUSTEXIST));
  dialog->SetTitle(LoadLocalizedString(title).c_str());
  StartIn(dialog.Get(), startFolder);
  ComPointer<IShellItem> chosen;
  if (FAILED(dialog->Show(owner)) || FAILED(dialog->GetResult(chosen.Receive()))) return {};
  return FileSystemPath(chosen.Get());
}

// A folder that exists and fits the program's paths; otherwise the user was told.
std::optional<std::wstring> PickUsableFolder(HWND owner, unsigned title, const std::wstring& startFolder) {
  auto folder = PickFolder(owner, title, startFolder);
  if (!folder) return {};
  if (PathFileExistsW(folder->c_str()) && folder->size() <= kMaxPathLength) return folder;
  ShowPickError(owner, STR_PATH_INVALID);
  return {};
}

bool IsOnDesktop(const std::wstring& path) {
  const std::wstring desktop = SpecialFolder(CSIDL_DESKTOP);
  return !desktop.empty() && path.starts_with(desktop);
}

bool UserWantsAnotherFolder() {
  const std::wstring text =
      LoadLocalizedString(STR_DESKTOP_NOT_RECOMMENDED) + L"\n" + LoadLocalizedString(STR_SELECT_ANOTHER_DIRECTORY);
  return ShowBox(text, LoadLocalizedString(STR_FOLDER), MB_YESNO) == IDYES;
}

bool BrowseForInstallFolder(HWND owner) {
  std::optional<std::wstring> folder;
  do {
    folder = PickUsableFolder(owner, STR_BROWSE_INSTALL_FOLDER, *app.installPath.Get());
    if (!folder) return false;
  } while (IsOnDesktop(*folder) && UserWantsAnotherFolder());
  app.installPath.Set(*folder);
  SaveLastInstallPath();
  return true;
}

bool BrowseForTempFolder(HWND owner) {
  const auto folder = PickUsableFolder(owner, STR_BROWSE_TEMP_FOLDER, *app.tmpPath.Get());
  if (!folder) return false;
  app.tmpPath.Set(*folder);
  SaveLastTmpPath();
  return true;
}

bool BrowseForCacheFolder(HWND owner) {
  const auto picked = PickUsableFolder(owner, STR_SELECT_CACHE_FOLDER, gamePaths.mtaCacheFolder);
  if (!picked) return false;
  const auto folder = CacheFolderOf(*picked);
  if (!folder) {
    ShowPickError(owner, STR_FOLDER_NOT_VALID);
    return false;
  }
  gamePaths.mtaCacheFolder = *folder;
  return true;
}

// The system's picker for a file with one of these names, which are its filters too.
std::optional<std::wstring> PickProgram(HWND owner, const std::vector<std::wstring>& names, const std::wstring& known) {
  std::wstring filter;
  for (const std::wstring& name : names) filter += name + L'\0' + name + L'\0';
  const std::wstring title = LoadLocalizedString(STR_SELECT) + L" " + names.front();
  wchar_t path[kMaxPathLength + 1] = {};
  known.copy(path, kMaxPathLength);
  OPENFILENAMEW dialog = {};
  dialog.lStructSize = sizeof dialog;
  dialog.hwndOwner = owner;
  dialog.lpstrFilter = filter.c_str();
  dialog.lpstrFile = path;
  dialog.nMaxFile = kMaxPathLength + 1;
  dialog.lpstrTitle = title.c_str();
  // The picker must not move the process to the folder that the user browsed to.
  dialog.Flags = OFN_PATHMUSTEXIST | OFN_FILEMUSTEXIST | OFN_NOCHANGEDIR;
  bool chosen = GetOpenFileNameW(&dialog);
  // What stood in the registry need not be a path; the picker then refuses to open with it.
  if (!chosen && CommDlgExtendedError() == FNERR_INVALIDFILENAME) {
    path[0] = L'\0';
    chosen = GetOpenFileNameW(&dialog);
  }
  if (!chosen) return {};
  return std::wstring(path);
}

bool BrowseForProgram(HWND owner, const std::vector<std::wstring>& names, std::wstring& program, std::wstring& folder) {
  const auto chosen = PickProgram(owner, names, program);
  if (!chosen) return false;
  if (std::find(names.begin(), names.end(), LastComponent(*chosen)) == names.end()) {
    ShowPickError(owner, STR_FILE_NOT_SUITABLE);
    return false;
  }
  program = *chosen;
  folder = ParentFolder(*chosen);
  return true;
}

}  // namespace

std::optional<std::wstring> CacheFolderOf(std::wstring picked) {
  constexpr std::wstring_view kResources = L"resources";
  if (picked.ends_with(kResources)) picked.resize(picked.size() - std::min(picked.size(), kResources.size() + 1));
  if (!FileExistsNonEmpty(picked + L"\\client.dll")) return {};
  return picked;
}

bool BrowseForPath(HWND owner, BrowseMode mode) {
  const ComSession session;  // both pickers show folders through the shell, which needs it
  switch (mode) {
    case BrowseMode::InstallFolder:
      return BrowseForInstallFolder(owner);
    case BrowseMode::TempFolder:
      return BrowseForTempFolder(owner);
    case BrowseMode::MtaExecutable:
      return BrowseForProgram(owner, {L"Multi Theft Auto.exe"}, gamePaths.mtaExePath, gamePaths.mtaFolder);
    case BrowseMode::GtaExecutable:
      return BrowseForProgram(owner, {L"gta_sa.exe", L"gta-sa.exe"}, gamePaths.gtaExePath, gamePaths.gtaFolder);
    case BrowseMode::MtaCacheFolder:
      return BrowseForCacheFolder(owner);
  }
  return false;
}
