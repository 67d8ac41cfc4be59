#include "app/dialogs.h"

#include <windows.h>

#include <string>

#include "core/context.h"
#include "core/localization.h"
#include "system/folder_removal.h"
#include "ui/message_boxes.h"

namespace {

bool UserAgrees(const std::wstring& dataFolder, const std::wstring& tmpFolder) {
  const std::wstring folderLine = L"\n- " + LoadLocalizedString(STR_FOLDER) + L": ";
  std::wstring text = LoadLocalizedString(STR_DATA_TO_DELETE) + L":" + L"\n- " +
                      LoadLocalizedString(STR_REGISTRY_ITEMS) + folderLine + dataFolder;
  if (tmpFolder != dataFolder) text += folderLine + tmpFolder;
  return ShowBox(text, LoadLocalizedString(STR_PRODUCT_TITLE), MB_YESNO | MB_ICONQUESTION) == IDYES;
}

}  // namespace

void DeleteAppData() {
  const std::wstring tmpFolder = *app.tmpPath.Get();
  if (!UserAgrees(app.dataDir, tmpFolder)) return;
  RegDeleteTreeW(HKEY_CURRENT_USER, app.registryKeyPath.c_str());
  RegDeleteTreeW(HKEY_LOCAL_MACHINE, app.registryKeyPath.c_str());
  RemoveFolder(app.dataDir);
  if (tmpFolder != app.dataDir) RemoveFolder(tmpFolder);
  ShowBox(LoadLocalizedString(STR_APP_DATA_DELETED), LoadLocalizedString(STR_PRODUCT_TITLE), MB_OK);
}
