#include "app/shutdown.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <thread>

#include "app/context.h"
#include "app/pages.h"
#include "support/box_recorder.h"
#include "support/shell_recorder.h"
#include "support/test_window.h"

namespace {

constexpr wchar_t kMutexName[] = L"zendora-shutdown-test";

// Waits for a message box of this process, which nobody answers by itself.
HWND WaitForBox(const wchar_t* caption) {
  for (int i = 0; i < 1000; ++i) {
    const HWND box = FindWindowW(L"#32770", caption);
    if (box && IsWindowVisible(box)) return box;
    Sleep(10);
  }
  return nullptr;
}

class Shutdown : public testing::Test {
 protected:
  ~Shutdown() override {
    app.exePath.clear();
    app.commandLine.clear();
  }

  // Another program or thread would do this; a person's request comes from the window's own thread.
  void SendClose() const { SendMessageW(window_.Window(), WM_CLOSE, 0, 0); }
  void PostClose() const {
    PostMessageW(window_.Window(), WM_CLOSE, 0, 0);
    window_.Settle();
  }

  TestWindow window_{CreateProgramWindow};
};

TEST_F(Shutdown, ClosesAtOnceWhileNothingRuns) {
  PostClose();
  EXPECT_TRUE(window_.WaitUntilClosed());
  EXPECT_TRUE(app.cancelRequested);
  EXPECT_EQ(app.closeAttempts, 1u);
  EXPECT_EQ(app.closeReason, NotEnding);
}

TEST_F(Shutdown, RemembersThatAnotherThreadAsked) {
  SendClose();
  EXPECT_TRUE(window_.WaitUntilClosed());
  EXPECT_EQ(app.closeReason, ClosedByMessage);
}

TEST_F(Shutdown, WaitsForARunningInstallationUpToTheFifthRequest) {
  window_.Run(ShowInstallPage);
  app.installRunning = true;
  for (uint32_t attempt = 1; attempt < 5; ++attempt) {
    PostClose();
    EXPECT_EQ(app.closeAttempts, attempt);
    EXPECT_TRUE(window_.IsOpen());
    EXPECT_EQ(app.currentPage, ClosingPage);
    EXPECT_TRUE(app.cancelRequested);
  }
  PostClose();
  EXPECT_TRUE(window_.WaitUntilClosed());
}

TEST_F(Shutdown, EndsWhenTheInstallationHasStopped) {
  window_.Run(ShowInstallPage);
  app.installRunning = true;
  PostClose();
  ASSERT_TRUE(window_.IsOpen());
  app.installRunning = false;
  PostClose();
  EXPECT_TRUE(window_.WaitUntilClosed());
}

TEST_F(Shutdown, RelaunchWaitsForNoInstallation) {
  const ShellRecorder shell;
  app.installRunning = true;
  app.restartRequested = true;
  PostClose();
  EXPECT_TRUE(window_.WaitUntilClosed());
}

TEST_F(Shutdown, EndOfTheSessionGivesTheReason) {
  const struct {
    BOOL ending;
    DWORD flags;
    CloseReason reason;
  } cases[] = {
      {FALSE, ENDSESSION_LOGOFF, NotEnding},
      {TRUE, 0, SystemShutdown},
      {TRUE, ENDSESSION_CLOSEAPP, ClosedByApplication},
      {TRUE, ENDSESSION_CRITICAL, CriticalShutdown},
      {TRUE, ENDSESSION_LOGOFF, LogOff},
      {TRUE, ENDSESSION_CLOSEAPP | ENDSESSION_CRITICAL | ENDSESSION_LOGOFF, ClosedByApplication},
      {TRUE, ENDSESSION_CRITICAL | ENDSESSION_LOGOFF, CriticalShutdown},
  };
  for (const auto& test : cases) {
    app.closeReason = NotEnding;
    EXPECT_EQ(SendMessageW(window_.Window(), WM_ENDSESSION, static_cast<WPARAM>(test.ending),
                           static_cast<LPARAM>(test.flags)),
              0);
    EXPECT_EQ(app.closeReason, test.reason) << "flags " << test.flags;
  }
  SendClose();  // what follows is part of the same ending
  EXPECT_EQ(app.closeReason, CriticalShutdown);
}

TEST_F(Shutdown, MessageBoxOfTheWorkerDoesNotHoldTheWindow) {
  window_.Run(ShowInstallPage);
  app.installRunning = true;
  std::thread worker([] { MessageBoxW(app.mainWindow, L"Try again?", L"Worker's question", MB_YESNO); });
  const HWND box = WaitForBox(L"Worker's question");
  EXPECT_NE(box, nullptr);
  for (int attempt = 0; attempt < 5; ++attempt) PostMessageW(window_.Window(), WM_CLOSE, 0, 0);
  EXPECT_TRUE(window_.WaitUntilClosed());
  // Whether the box goes with its owner is the system's affair; its thread must not be left behind here.
  SendMessageW(box, WM_COMMAND, IDNO, 0);
  worker.join();
}

TEST(Relaunch, CommandLineIsWhatTheRestartAsksForAndWhatThisInstanceGot) {
  const struct {
    const wchar_t *restartArgs, *commandLine, *relaunch;
    bool elevated;
  } cases[] = {
      {L"install:a source:b", L"", L"install:a source:b", true},
      {L"updated", L"install:a source:b", L"updated install:a source:b", false},
      {L"", L"source:b", L"source:b", false},
      {L"", L"", L"", false},
  };
  for (const auto& test : cases) {
    const ShellRecorder shell;
    TestWindow window(CreateProgramWindow);
    app.exePath = L"C:\\setup.exe";
    app.restartRequested = true;
    app.restartElevated = test.elevated;
    app.restartArgs = test.restartArgs;
    app.commandLine = test.commandLine;
    PostMessageW(window.Window(), WM_CLOSE, 0, 0);
    ASSERT_TRUE(window.WaitUntilClosed());
    ASSERT_EQ(shell.Starts().size(), 1u);
    EXPECT_EQ(shell.Starts()[0].file, L"C:\\setup.exe");
    EXPECT_EQ(shell.Starts()[0].parameters, test.relaunch);
    EXPECT_EQ(shell.Starts()[0].verb, test.elevated ? L"runas" : L"open");
  }
  app.exePath.clear();
  app.commandLine.clear();
}

TEST(Relaunch, FailureIsToldAfterTheMutexIsFree) {
  const ShellRecorder shell(ERROR_CANCELLED);
  TestWindow window(CreateProgramWindow);
  window.Run([] { app.instanceMutex.Reset(CreateMutexW(nullptr, FALSE, kMutexName)); });
  app.exePath = L"C:\\setup.exe";
  app.restartRequested = true;
  app.restartElevated = true;
  PostMessageW(window.Window(), WM_CLOSE, 0, 0);

  const HWND box = WaitForBox(L"Action is required");
  ASSERT_NE(box, nullptr);
  EXPECT_FALSE(KernelHandle(OpenMutexW(SYNCHRONIZE, FALSE, kMutexName)));
  EXPECT_EQ(GetWindow(box, GW_OWNER), nullptr);
  window.Run([box] {
    EXPECT_TRUE(IsWindow(box));
    MSG message;
    EXPECT_FALSE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_NOREMOVE)) << "the box is about to vanish";
  });
  SendMessageW(box, WM_COMMAND, IDOK, 0);
  EXPECT_TRUE(window.WaitUntilClosed());
  app.exePath.clear();
}

}  // namespace
