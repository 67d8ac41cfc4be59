#include "update/self_update.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <thread>

#include "app/manifest_thread.h"
#include "core/context.h"
#include "support/replaced_import.h"
#include "support/shell_recorder.h"
#include "support/temp_folder.h"
#include "support/test_window.h"
#include "system/files.h"
#include "update/replaced_program.h"

extern "C" {
extern decltype(&CopyFileW) importedCopyFile __asm__("__imp__CopyFileW@12");
}

namespace {

constexpr char kNewProgram[] = "The quick brown fox jumps over the lazy dog";

bool closingPageShown;
decltype(&CopyFileW) realCopyFile;

BOOL WINAPI CloseBeforeCopy(const wchar_t* source, const wchar_t* target, BOOL failIfExists) {
  EXPECT_TRUE(PathExists(app.exePath));
  PostMessageW(app.mainWindow, WM_CLOSE, 0, 0);
  closingPageShown = WaitUntil([] { return app.currentPage == ClosingPage; }) && IsWindow(app.mainWindow);
  return realCopyFile(source, target, failIfExists);
}

class SelfUpdate : public testing::Test {
 protected:
  // The new program is there already. Returns what was started in the end.
  std::vector<RecordedStart> UpdateUntilTheWindowIsClosed() {
    const TestWindow window(CreateProgramWindow);
    const ShellRecorder shell;
    app.exePath = folder_ / L"setup.exe";
    app.backupPath = app.exePath + L".backup";
    app.commandLine = L"-install fox";
    app.tmpPath.Set(folder_.Path());
    app.updateInProgress = true;
    WriteTestFile(app.exePath, "the old program");
    WriteTestFile(UpdateFilePath(), kNewProgram);
    std::thread([] {
      RunSelfUpdate({.md5 = "9e107d9d372bb6826bd81d3542a419d6", .helpURL = "", .filesize = 0, .urls = {}});
    }).join();
    EXPECT_TRUE(window.WaitUntilClosed());
    EXPECT_EQ(ReadTestFile(app.exePath), kNewProgram);
    return shell.Starts();
  }

  const TempFolder folder_;
};

TEST_F(SelfUpdate, TheNewProgramLearnsThatItIsOne) {
  const std::vector<RecordedStart> starts = UpdateUntilTheWindowIsClosed();
  ASSERT_EQ(starts.size(), 1u);
  EXPECT_EQ(starts[0].file, app.exePath);
  EXPECT_EQ(starts[0].parameters, L"updated");
}

TEST_F(SelfUpdate, WhatAnInterruptedOneLeftIsPutInOrder) {
  app.tmpPath.Set(folder_.Path());
  app.manifestPath = folder_ / L"manifest.xml";
  WriteTestFile(app.manifestPath, "<downloader><packages><package/></packages></downloader>");
  WriteTestFile(UpdateFilePath(), kNewProgram);

  // Between its two renames: the old program is started by its other name.
  const std::wstring program = folder_ / L"setup.exe";
  app.exePath = program + L".backup";
  WriteTestFile(app.exePath, "the old program");
  RestoreReplacedProgram();
  EXPECT_EQ(app.exePath, program);
  EXPECT_EQ(ReadTestFile(program), "the old program");

  // While the new program was copied.
  WriteTestFile(NewProgramPath(), "The quick brown");
  ManifestThreadProc(nullptr);
  EXPECT_FALSE(PathExists(NewProgramPath()));

  // Before that was started.
  WriteTestFile(program, kNewProgram);
  WriteTestFile(app.backupPath, "the old program");
  ManifestThreadProc(nullptr);
  EXPECT_FALSE(PathExists(app.backupPath));
}

// The replacement takes several steps, and a process that ended between them would leave it half done.
TEST_F(SelfUpdate, AWindowClosedMeanwhileWaitsForTheNewProgramAndStaysClosed) {
  realCopyFile = importedCopyFile;
  closingPageShown = false;
  const ReplacedImport copy(importedCopyFile, CloseBeforeCopy);
  EXPECT_TRUE(UpdateUntilTheWindowIsClosed().empty()) << "who has closed the program doesn't want it back";
  EXPECT_TRUE(closingPageShown);
}

}  // namespace
