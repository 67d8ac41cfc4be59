#include "app/shutdown.h"

#include <gtest/gtest.h>

#include "app/context.h"
#include "support/shell_recorder.h"
#include "support/test_window.h"

namespace {

constexpr wchar_t kMutexName[] = L"zendora-shutdown-test";

// Waits for a message box that nobody answers by itself.
HWND WaitForBox(const wchar_t* caption) {
  HWND box = nullptr;
  for (int i = 0; i < 1000 && !IsWindowVisible(box); ++i) {
    Sleep(10);
    box = FindWindowW(L"#32770", caption);
  }
  return box;
}

TEST(Shutdown, EndOfTheSessionGivesTheReason) {
  const TestWindow window(CreateProgramWindow);
  SendMessageW(window.Window(), WM_ENDSESSION, FALSE, static_cast<LPARAM>(ENDSESSION_LOGOFF));
  EXPECT_EQ(app.closeReason, NotEnding) << "somebody refused";
  const std::pair<DWORD, CloseReason> cases[] = {
      {0, SystemShutdown},
      {ENDSESSION_LOGOFF, LogOff},
      {ENDSESSION_CLOSEAPP | ENDSESSION_CRITICAL | ENDSESSION_LOGOFF, ClosedByApplication},
      {ENDSESSION_CRITICAL | ENDSESSION_LOGOFF, CriticalShutdown},
  };
  for (const auto& [flags, reason] : cases) {
    SendMessageW(window.Window(), WM_ENDSESSION, TRUE, static_cast<LPARAM>(flags));
    EXPECT_EQ(app.closeReason, reason) << "flags " << flags;
  }
  SendMessageW(window.Window(), WM_CLOSE, 0, 0);
  EXPECT_EQ(app.closeReason, CriticalShutdown) << "what follows is part of the same ending";
}

TEST(Shutdown, RelaunchWaitsForNoInstallationAndItsFailureIsToldAfterTheMutexIsFree) {
  const ShellRecorder shell(ERROR_CANCELLED);
  const TestWindow window(CreateProgramWindow);
  window.Run([] { app.instanceMutex.Reset(CreateMutexW(nullptr, FALSE, kMutexName)); });
  app.installRunning = true;
  app.restartRequested = true;
  app.restartElevated = true;
  app.restartArgs = L"updated";
  app.commandLine = L"install:a source:b";
  PostMessageW(window.Window(), WM_CLOSE, 0, 0);
  const HWND box = WaitForBox(L"Action is required");
  EXPECT_EQ(shell.Starts().at(0).parameters, L"updated install:a source:b");
  EXPECT_FALSE(KernelHandle(OpenMutexW(SYNCHRONIZE, FALSE, kMutexName)));
  window.Run([box] {
    MSG message;
    EXPECT_FALSE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_NOREMOVE)) << "the box is about to vanish";
    EXPECT_TRUE(IsWindow(box));
  });
  SendMessageW(box, WM_COMMAND, IDOK, 0);
  EXPECT_TRUE(window.WaitUntilClosed());
}

}  // namespace
