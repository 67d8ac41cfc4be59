#include "app/shutdown.h"

#include "app/pages.h"
#include "core/context.h"
#include "ui/message_boxes.h"
#include "ui/theme/dark_menu_bar.h"
#include "ui/theme/theme.h"

namespace {

// So many requests to close end the program even while an installation runs.
constexpr uint32_t kInsistentCloseAttempts = 5;

std::wstring RelaunchCommandLine() {
  if (app.restartDropsCommandLine) app.commandLine.clear();
  const wchar_t* separator = app.restartArgs.empty() || app.commandLine.empty() ? L"" : L" ";
  return app.restartArgs + separator + app.commandLine;
}

}  // namespace

bool OnCloseRequest() {
  app.cancelRequested.Utter();
  const bool held = app.windowHold.CountCloseRequest();
  if (app.closeReason == NotEnding && InSendMessage()) app.closeReason = ClosedByMessage;
  if (held && !app.restartRequested && app.windowHold.CloseAttempts() < kInsistentCloseAttempts) {
    ShowClosingPage();
    return false;
  }
  return true;
}

void OnEndSession(LPARAM flags) {
  const auto reasons = static_cast<DWORD>(flags);
  if (reasons & ENDSESSION_CLOSEAPP) {
    app.closeReason = ClosedByApplication;
  } else if (reasons & ENDSESSION_CRITICAL) {
    app.closeReason = CriticalShutdown;
  } else if (reasons & ENDSESSION_LOGOFF) {
    app.closeReason = LogOff;
  } else {
    app.closeReason = SystemShutdown;
  }
}

void OnDestroy() {
  ForgetMenuTheme();
  DeleteThemeBrushes();
  if (app.instanceMutex) ReleaseMutex(app.instanceMutex.Get());
  app.instanceMutex.Reset();
  // Once: what starts the program serves messages, and another close request may be among them.
  const bool relaunch = app.restartRequested;
  app.restartRequested = false;
  if (relaunch) RunProcess(app.restartElevated, true, app.exePath, RelaunchCommandLine());
  // Last, because a pending WM_QUIT would close the box that reports a failed relaunch before it is read.
  PostQuitMessage(0);
}
