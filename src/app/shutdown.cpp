#include "app/shutdown.h"

#include "app/pages.h"
#include "core/context.h"
#include "ui/message_boxes.h"
#include "ui/theme/dark_menu_bar.h"
#include "ui/theme/theme.h"

namespace {

// So many requests to close end the program even while an installation runs.
constexpr uint32_t kInsistentCloseAttempts = 5;

// What starts the program serves messages, and another close request may be among them.
bool relaunching = false;

void EndInstance() {
  if (app.instanceMutex) ReleaseMutex(app.instanceMutex.Get());
  app.instanceMutex.Reset();
}

std::wstring RelaunchCommandLine() {
  if (app.restartDropsCommandLine) app.commandLine.clear();
  const wchar_t* separator = app.restartArgs.empty() || app.commandLine.empty() ? L"" : L" ";
  return app.restartArgs + separator + app.commandLine;
}

// While the window is still there: Windows asks for consent in front of it. The new instance finds the mutex free,
// whenever the user answers.
void Relaunch() {
  relaunching = true;
  app.restartRequested = false;
  EndInstance();
  EnableWindow(app.mainWindow, FALSE);
  RunProcess(app.restartElevated, true, app.exePath, RelaunchCommandLine());
  relaunching = false;
}

// The session may end as soon as its windows have answered. A worker that stops at its next step leaves nothing half
// done, and a replacement of the program ends in a moment; both still send what they have for the window.
void WaitForHoldersToStop() {
  constexpr uint64_t kLimitMs = 4000;  // of the five seconds after which Windows takes a program for hung
  constexpr DWORD kPollMs = 50;
  const uint64_t deadline = GetTickCount64() + kLimitMs;
  while (app.windowHold.IsHeld() && GetTickCount64() < deadline) {
    MsgWaitForMultipleObjects(0, nullptr, FALSE, kPollMs, QS_SENDMESSAGE);
    MSG message;
    PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
  }
}

}  // namespace

bool OnCloseRequest() {
  app.cancelRequested.Utter();
  const bool held = app.windowHold.CountCloseRequest();
  if (app.closeReason == NotEnding && InSendMessage()) app.closeReason = ClosedByMessage;
  const bool insistent = app.windowHold.CloseAttempts() >= kInsistentCloseAttempts;
  if (relaunching) return insistent;
  if (held && !app.restartRequested && !insistent) {
    ShowClosingPage();
    return false;
  }
  if (app.restartRequested) Relaunch();
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
  app.cancelRequested.Utter();
  WaitForHoldersToStop();
}

void OnDestroy() {
  ForgetMenuTheme();
  DeleteThemeBrushes();
  EndInstance();
  if (app.restartRequested) Relaunch();  // destroyed by the menu, right before the close request came
  // Last, because a pending WM_QUIT would close the box that reports a failed relaunch before it is read.
  PostQuitMessage(0);
}
