#include "app/pages.h"

#include <windows.h>

#include "app/component_list.h"
#include "app/keyboard.h"
#include "core/context.h"
#include "core/localization.h"
#include "system/threads.h"
#include "ui/page_controls.h"
#include "ui/theme/theme.h"

namespace {

BOOL CALLBACK DestroyChild(HWND child, LPARAM) {
  DestroyWindow(child);
  return TRUE;
}

BOOL CALLBACK HideChild(HWND child, LPARAM) {
  ShowWindow(child, SW_HIDE);
  return TRUE;
}

// Releases the wrappers and fonts of a page whose windows are gone. A thread that fills the page's controls may still
// hold the page; then it stays, and what that thread sends reaches no window.
template <typename PageControls>
void ReleasePage(PublishingWord<PageControls*>& page, const KernelHandle& writer) {
  PageControls* const old = page;
  page = nullptr;
  if (!IsThreadActive(writer)) delete old;
}

// Stays until the program ends, as nothing follows its page.
Label* closingLabel = nullptr;

void ArrangeClosingPage() {
  closingLabel->SetFontHeight(22);
  closingLabel->SetPlace({0, 0, 600, 400});
}

void RemoveCurrentPage() {
  app.currentPage = NoPage;  // what the controls tell their parent while they go concerns no page
  EnumChildWindows(app.mainWindow, DestroyChild, 0);
  ReleasePage(app.componentsPage, app.manifestThread);
  ReleasePage(app.installPage, app.workerThread);
}

}  // namespace

void ShowComponentsPage() {
  RemoveCurrentPage();
  app.componentsPage = new ComponentsPageControls(app.mainWindow);
  app.currentPage = ComponentsPage;
  ThemeChildren(app.mainWindow);
  BeginKeyboardPage();
}

void ShowInstallPage() {
  RemoveCurrentPage();
  const auto page = new InstallPageControls(app.mainWindow);
  app.installPage = page;
  app.currentPage = InstallPage;
  ThemeChildren(app.mainWindow);
  if (app.darkMode) ThemeUnstyledControl(page->deleteTmpCheckbox.Window());
  BeginKeyboardPage();
}

void ShowClosingPage() {
  if (app.currentPage == ClosingPage) return;
  EnumChildWindows(app.mainWindow, HideChild, 0);
  closingLabel = new Label(app.mainWindow, LoadLocalizedString(STR_CLOSING) + L"..", SS_CENTER | SS_CENTERIMAGE);
  ArrangeClosingPage();
  app.currentPage = ClosingPage;
  ThemeChildren(app.mainWindow);
  BeginKeyboardPage();
}

void ArrangePage() {
  if (ComponentsPageControls* const page = app.componentsPage) {
    page->Arrange();
    FitComponentList();
  }
  if (InstallPageControls* const page = app.installPage) page->Arrange();
  if (app.currentPage == ClosingPage) ArrangeClosingPage();
}
