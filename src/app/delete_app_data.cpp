#include "app/dialogs.h"

#include <windows.h>

#include <string>

#include "core/context.h"
#include "core/localization.h"
#include "system/folder_removal.h"
#include "ui/message_boxes.h"

namespace {

std::wstring FolderLine(const std::wstring& folder) {
  return L"\n- " + LoadLocalizedString(STR_FOLDER) + L": " + folder;
}

std::wstring RegistryLine() { return L"\n- " + LoadLocalizedString(STR_REGISTRY_ITEMS); }

bool UserAgrees(const std::wstring& dataFolder, const std::wstring& tmpFolder) {
  std::wstring text = LoadLocalizedString(STR_DATA_TO_DELETE) + L":" + RegistryLine() + FolderLine(dataFolder);
  if (tmpFolder != dataFolder) text += FolderLine(tmpFolder);
  return ShowBox(text, LoadLocalizedString(STR_PRODUCT_TITLE), MB_YESNO | MB_ICONQUESTION) == IDYES;
}

// What could not be removed, one line each, and the first reason.
struct Remains {
  uint32_t error = ERROR_SUCCESS;
  std::wstring lines;

  void Add(uint32_t failure, const std::wstring& line) {
    if (failure == ERROR_SUCCESS) return;
    if (error == ERROR_SUCCESS) error = failure;
    lines += line;
  }
};

uint32_t RemoveSettings() {
  // Nothing of ours is kept there, and only administrators may remove what an older version left.
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, app.registryKeyPath.c_str());
  const LSTATUS status = RegDeleteTreeW(HKEY_CURRENT_USER, app.registryKeyPath.c_str());
  return status == ERROR_FILE_NOT_FOUND ? ERROR_SUCCESS : static_cast<uint32_t>(status);
}

}  // namespace

void DeleteAppData() {
  const std::wstring tmpFolder = *app.tmpPath.Get();
  if (!UserAgrees(app.dataDir, tmpFolder)) return;
  Remains remains;
  remains.Add(RemoveSettings(), RegistryLine());
  remains.Add(RemoveFolder(app.dataDir), FolderLine(app.dataDir));
  if (tmpFolder != app.dataDir) remains.Add(RemoveFolder(tmpFolder), FolderLine(tmpFolder));
  const std::wstring title = LoadLocalizedString(STR_PRODUCT_TITLE);
  if (remains.error == ERROR_SUCCESS) {
    ShowBox(LoadLocalizedString(STR_APP_DATA_DELETED), title, MB_OK);
  } else {
    ShowBox(FormatErrorMessage(remains.error, remains.lines), title, MB_OK | MB_ICONERROR);
  }
}
