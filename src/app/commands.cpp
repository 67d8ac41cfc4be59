#include "app/commands.h"

#include <windows.h>

#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "app/context.h"
#include "app/localization.h"
#include "app/main_menu.h"
#include "app/page_controls.h"
#include "app/pages.h"
#include "install/installation_run.h"
#include "manifest/component_list.h"
#include "manifest/manifest_store.h"
#include "system/text.h"
#include "system/threads.h"

namespace {

void WarnThatNothingIsSelected() {
  MessageBoxW(nullptr, LoadLocalizedString(STR_SELECT_COMPONENT).c_str(),
              LoadLocalizedString(STR_PRODUCT_TITLE).c_str(), MB_ICONWARNING);
}

// What tells the elevated instance to install these packages by itself.
std::wstring InstallArguments(const std::vector<std::string>& packages) {
  std::string arguments;
  for (const std::string& package : packages) arguments += (arguments.empty() ? "install:" : ",") + package;
  return WidenBytes(arguments + " source:" + *app.selectedSource.Get());
}

void RelaunchElevated() {
  const std::vector<std::string> packages = CheckedComponents();
  if (packages.empty()) {
    WarnThatNothingIsSelected();
    return;
  }
  app.restartArgs = InstallArguments(packages);
  app.commandLine.clear();
  app.restartRequested = true;
  app.restartElevated = true;
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
  app.cancelRequested = true;
  const InstallPageControls* page = app.installPage;
  page->cancelButton.SetText(LoadLocalizedString(STR_EXIT));
}

void SelectSource(int position) {
  const auto manifest = CurrentManifest();
  if (position < 0 || static_cast<size_t>(position) >= manifest->sources.size()) return;
  app.selectedSource.Set(std::next(manifest->sources.begin(), position)->first);
  BuildMainMenu();
}
