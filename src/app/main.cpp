#include <windows.h>

#include <string>

#include "app/keyboard.h"
#include "app/main_window.h"
#include "app/single_instance.h"
#include "core/context.h"
#include "core/environment.h"
#include "core/localization.h"
#include "core/settings.h"
#include "system/modules.h"
#include "ui/theme/theme.h"
#include "update/replaced_program.h"

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

int RunMessageLoop() {
  const HACCEL accelerators = LoadAcceleratorsW(app.instance, MAKEINTRESOURCEW(ACCELERATORS_MAIN));
  MSG message = {};
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    if (TakeKey(accelerators, message)) continue;
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return static_cast<int>(message.wParam);
}

int RunProgram(HINSTANCE instance, const std::wstring& commandLine, int showCommand) {
  app.instance = instance;
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
