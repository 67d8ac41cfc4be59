// What start-up settles before there is a window.
#include <gtest/gtest.h>

#include <thread>

#include "app/command_line.h"
#include "app/context.h"
#include "app/environment.h"
#include "app/localization.h"
#include "app/single_instance.h"
#include "support/box_recorder.h"
#include "support/replaced_import.h"
#include "support/shell_recorder.h"
#include "support/temp_folder.h"
#include "support/test_window.h"
#include "system/files.h"

extern "C" decltype(&GetUserDefaultUILanguage) importedUserLanguage __asm__("__imp__GetUserDefaultUILanguage@0");

namespace {

LANGID windowsLanguage;
LANGID WINAPI GiveWindowsLanguage() { return windowsLanguage; }

class SingleInstance : public testing::Test {
 protected:
  ~SingleInstance() override {
    app.instanceMutex.Reset();
    app.startupWaitMs = 0;
    app.commandLine.clear();
  }

  KernelHandle mutexOfFirst_{CreateMutexW(nullptr, FALSE, kApplicationId)};
};

TEST_F(SingleInstance, HandsItsWholeCommandLineToTheFirstOrNothing) {
  const TestWindow window(CreateProgramWindow);
  for (const size_t length : {259u, 260u}) {  // the longest that fits, and one that doesn't
    app.commandLine = L"old";
    ShowWindow(window.Window(), SW_MINIMIZE);
    EXPECT_FALSE(ClaimSingleInstance(std::wstring(length, L'a')));
    EXPECT_EQ(app.commandLine, length == 259 ? std::wstring(length, L'a') : L"old");
    EXPECT_FALSE(IsIconic(window.Window()));
  }
}

TEST_F(SingleInstance, WaitsForTheEndOfTheFirst) {
  std::thread first([this] {
    while (std::atomic_ref(app.startupWaitMs).load() < 100) Sleep(1);
    mutexOfFirst_.Reset();
  });
  EXPECT_TRUE(ClaimSingleInstance(L""));
  first.join();
  EXPECT_TRUE(app.instanceMutex);
}

TEST_F(SingleInstance, ShowsAFirstThatStaysInTheTaskManager) {
  const ShellRecorder shell;
  const BoxRecorder boxes({IDOK});
  EXPECT_FALSE(ClaimSingleInstance(L""));
  EXPECT_EQ(app.startupWaitMs, 1000u);
  EXPECT_EQ(boxes.Boxes().at(0).text, L"Another instance is running. You should close already opened program first.");
  EXPECT_EQ(shell.Starts().at(0).file, SystemFilePath(L"taskmgr.exe"));
}

TEST(CommandLine, BackupGoesOnlyAfterAnUpdate) {
  const TempFolder folder;
  app.backupPath = folder / L"program.exe.backup";
  WriteTestFile(app.backupPath, "old program");
  ParseCommandLine(L"source:\u0416 updated");
  EXPECT_EQ(*app.selectedSource.Get(), "\xD0\x96");
  EXPECT_TRUE(PathExists(app.backupPath));
  ParseCommandLine(L"updated source:");
  EXPECT_FALSE(PathExists(app.backupPath));
  app.commandLine.clear();
}

TEST(Environment, UserAgentTellsTheSystem) {
  EXPECT_EQ(BuildUserAgent(10, 0, 19045, true), L"Zendora Installer/4.0.8 (Windows NT 10.0; Win64; x64; Build/19045)");
}

TEST(Localization, UserGetsAnOfferedLanguage) {
  const ReplacedImport replaced(importedUserLanguage, GiveWindowsLanguage);
  constexpr LANGID kAustrian = MAKELANGID(LANG_GERMAN, SUBLANG_GERMAN_AUSTRIAN), kOld = LANG_SPANISH;
  const LANGID cases[][3] = {{LANG_TURKISH, LANG_GERMAN, LANG_TURKISH},
                             {LANG_UKRAINIAN, LANG_GERMAN, kOld},
                             {0, kAustrian, LANG_GERMAN},
                             {0, LANG_UKRAINIAN, LANG_RUSSIAN},
                             {0, LANG_FRENCH, kOld}};
  for (const auto& [stored, windows, expected] : cases) {
    windowsLanguage = windows;
    app.uiLanguage = kOld;
    EXPECT_EQ(ResolveUiLanguage(stored), expected != kOld);
    EXPECT_EQ(app.uiLanguage, expected) << stored << " " << windows;
  }
  app.uiLanguage = LANG_ENGLISH;
}

}  // namespace
