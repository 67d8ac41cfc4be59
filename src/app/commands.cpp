#include "app/commands.h"

#include <windows.h>

#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "app/command_line.h"
#include "app/component_list.h"
#include "app/main_menu.h"
#include "app/pages.h"
#include "core/context.h"
#include "core/localization.h"
#include "core/settings.h"
#include "install/installation_run.h"
#include "manifest/manifest_store.h"
#include "system/text.h"
#include "system/threads.h"
#include "ui/mnemonics.h"
#include "ui/page_controls.h"

namespace {

void WarnThatNothingIsSelected() {
  MessageBoxW(nullptr, LoadLocalizedString(STR_SELECT_COMPONENT).c_str(),
              LoadLocalizedString(STR_PRODUCT_TITLE).c_str(), MB_ICONWARNING);
}

void RelaunchElevated() {
  const std::vector<std::string> packages = CheckedComponents();
  if (packages.empty()) {
    WarnThatNothingIsSelected();
    return;
  }
  app.restartArgs = WidenBytes(InstallCommandLine(packages, *app.selectedSource.Get()));
  app.commandLine.clear();
  app.restartElevated = true;
  app.restartRequested = true;
  PostMessageW(app.mainWindow, WM_CLOSE, 0, 0);
}

// A list from the command line takes precedence over the checked rows. False when there is nothing to install.
bool SettleInstallList() {
  if (!app.installList.Get()->empty()) return true;
  std::vector<std::string> packages = CheckedComponents();
  if (packages.empty()) return false;
  app.selectionFromUser = true;
  app.installList.Set(std::move(packages));
  return true;
}

void StartWorker() {
  if (!SettleInstallList()) {
    WarnThatNothingIsSelected();
    return;
  }
  ShowInstallPage();
  StartThreadOnce(app.workerThread, InstallThreadProc);
}

void RewriteComponentsPage(const ComponentsPageControls& page) {
  page.installPathLabel.SetText(LoadLocalizedString(STR_INSTALL_IN) + L": [" +
                                LoadLocalizedString(STR_FOLDERS_AUTOMATIC) + L"]");
  page.selectFolderButton.SetText(LoadMarkedString(STR_OPEN));
  page.componentsLabel.SetText(LoadLocalizedString(STR_COMPONENTS) + L":");
  page.installButton.SetText(LoadMarkedString(STR_INSTALL));
  UpdateTotalSize();
}

// The worker writes the other texts of this page as it goes. The button keeps its text, too, but not a letter that now
// belongs to another one. That isn't left in the mailbox, where it could take the place of a newer text of the worker.
void RewriteInstallPage(const InstallPageControls& page) {
  page.deleteTmpCheckbox.SetText(LoadMarkedString(STR_DELETE_TEMP_FILES));
  const HWND button = page.cancelButton.Window();
  SetWindowTextW(button, MarkAnew(WindowText(button)).c_str());
}

}  // namespace

void StartInstallation() {
  if (app.updateInProgress) return;
  if (app.isAdmin) {
    StartWorker();
  } else {
    RelaunchElevated();
  }
}

void CancelOrExit() {
  if (app.cancelRequested) {
    app.restartRequested = false;
    PostMessageW(app.mainWindow, WM_CLOSE, 0, 0);
    return;
  }
  app.cancelRequested.Utter();
  const InstallPageControls* page = app.installPage;
  page->cancelButton.SetText(LoadMarkedString(STR_EXIT));
}

void SelectSource(int position) {
  const auto manifest = CurrentManifest();
  if (position < 0 || static_cast<size_t>(position) >= manifest->sources.size()) return;
  app.selectedSource.Set(std::next(manifest->sources.begin(), position)->first);
  BuildMainMenu();
}

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
