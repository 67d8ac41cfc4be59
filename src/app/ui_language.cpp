#include "app/ui_language.h"

#include <windows.h>

#include "app/context.h"
#include "app/localization.h"
#include "app/main_menu.h"
#include "app/page_controls.h"
#include "app/settings.h"
#include "manifest/component_list.h"

namespace {

void RewriteComponentsPage(const ComponentsPageControls& page) {
  page.installPathLabel.SetText(LoadLocalizedString(STR_INSTALL_IN) + L": [" +
                                LoadLocalizedString(STR_FOLDERS_AUTOMATIC) + L"]");
  page.selectFolderButton.SetText(LoadLocalizedString(STR_OPEN));
  page.componentsLabel.SetText(LoadLocalizedString(STR_COMPONENTS) + L":");
  page.installButton.SetText(LoadLocalizedString(STR_INSTALL));
  UpdateTotalSize();
}

// The worker writes the other texts of this page as it goes.
void RewriteInstallPage(const InstallPageControls& page) {
  page.deleteTmpCheckbox.SetText(LoadLocalizedString(STR_DELETE_TEMP_FILES));
}

}  // namespace

void SetUiLanguage(uint32_t language) {
  const bool changed = language != app.uiLanguage;
  app.uiLanguage = language;
  SetThreadLanguage(language);
  SetWindowTextW(app.mainWindow, LoadLocalizedString(STR_PRODUCT_TITLE).c_str());
  BuildMainMenu();
  if (app.currentPage == ComponentsPage) RewriteComponentsPage(*app.componentsPage);
  if (app.currentPage == InstallPage) RewriteInstallPage(*app.installPage);
  if (changed) SaveLanguage();
}
