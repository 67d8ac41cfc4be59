#include <windows.h>

#include <string>

#include "app/command_line.h"
#include "app/context.h"
#include "app/environment.h"
#include "app/localization.h"
#include "app/main_menu.h"
#include "app/main_window.h"
#include "app/replaced_program.h"
#include "app/settings.h"
#include "app/single_instance.h"
#include "app/theme.h"
#include "net/self_update.h"
#include "system/modules.h"

namespace {

// System libraries load others by bare name while the program runs, and would find them beside it first: in the
// folder where browsers put downloads. Updates brought this function to Vista and 7.
void SearchLibrariesInSystemFolderOnly() {
  using SetDirectories = BOOL(WINAPI*)(DWORD flags);
  constexpr DWORD kSearchSystem32 = 0x00000800;
  const auto setDirectories =
      FindFunction<SetDirectories>(GetModuleHandleW(L"kernel32.dll"), "SetDefaultDllDirectories");
  if (setDirectories) setDirectories(kSearchSystem32);
}

// One taskbar button for this program and the one that it relaunches. Vista lacks the function.
void SetApplicationId() {
  using SetId = HRESULT(WINAPI*)(const wchar_t* id);
  const auto setId = FindFunction<SetId>(GetModuleHandleW(L"shell32.dll"), "SetCurrentProcessExplicitAppUserModelID");
  if (setId) setId(kApplicationId);
}

void SetUpwardCalls() {
  app.upward.buildMainMenu = BuildMainMenu;
  app.upward.runSelfUpdate = RunSelfUpdate;
}

int RunMessageLoop() {
  const HACCEL accelerators = LoadAcceleratorsW(app.instance, MAKEINTRESOURCEW(ACCELERATORS_MAIN));
  MSG message = {};
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    if (TranslateAcceleratorW(message.hwnd, accelerators, &message)) continue;
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return static_cast<int>(message.wParam);
}

int RunProgram(HINSTANCE instance, const std::wstring& commandLine, int showCommand) {
  app.instance = instance;
  SetUpwardCalls();
  ProbeAdministrator();
  if (!ClaimSingleInstance(commandLine)) return 0;
  SetApplicationId();
  ProbeEnvironment();
  if (!commandLine.empty()) ParseCommandLine(commandLine);
  LoadSettings();
  RestoreReplacedProgram();
  SetThreadLanguage(app.uiLanguage);
  SetupDarkMode();
  RegisterMainWindowClass(instance);
  if (!CreateMainWindow(instance, showCommand)) return 0;
  return RunMessageLoop();
}

}  // namespace

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, wchar_t* commandLine, int showCommand) {
  // Looking at the drives would otherwise raise a system box for a card reader without a card.
  SetErrorMode(SEM_FAILCRITICALERRORS);
  SearchLibrariesInSystemFolderOnly();
  const int exitCode = RunProgram(instance, commandLine, showCommand);
  // The manifest thread and the worker may still run, and are not waited for. To return would destroy static objects
  // that they use; this ends them first and destroys nothing.
  ExitProcess(static_cast<UINT>(exitCode));
}
