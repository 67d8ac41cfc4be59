#include "app/replaced_program.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <optional>
#include <thread>

#include "app/context.h"
#include "support/temp_folder.h"
#include "system/files.h"
#include "system/handles.h"

namespace {

class ReplacedProgram : public testing::Test {
 protected:
  ReplacedProgram() {
    app.exePath = folder_ / L"setup.exe";
    app.backupPath = folder_ / L"setup.exe.backup";
    app.tmpPath.Set(folder_ / L"temporary");
  }
  ~ReplacedProgram() override {
    app.exePath.clear();
    app.backupPath.clear();
    app.tmpPath.Set({});
    app.updateInProgress = false;
  }

  // As a running program's file is: readable, but not removable.
  FileHandle HoldCopy() const {
    return FileHandle(CreateFileW(app.backupPath.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
  }

  TempFolder folder_;
};

TEST_F(ReplacedProgram, IsRemovedWhenItHasEnded) {
  WriteTestFile(app.backupPath, "old");
  FileHandle running = HoldCopy();
  ASSERT_TRUE(running);
  std::thread end([&running] {
    Sleep(150);
    running.Reset();
  });
  RemoveReplacedProgram();
  EXPECT_FALSE(PathExists(app.backupPath));
  end.join();
}

TEST_F(ReplacedProgram, TakesItsPlaceAgainWhenItIsStarted) {
  const struct {
    const char* what;
    const wchar_t* started;
    std::optional<std::string> inPlace;
    const wchar_t *runsAs, *backup;
  } cases[] = {
      {"ended before the new one was there", L"setup.exe.backup", std::nullopt, L"setup.exe", L"setup.exe.backup"},
      {"ended while the new one was copied", L"setup.exe.backup", "half", L"setup.exe", L"setup.exe.backup"},
      {"beside the whole new one", L"setup.exe.backup", "the new program", L"setup.exe.backup",
       L"setup.exe.backup.backup"},
      {"the program itself", L"setup.exe", std::nullopt, L"setup.exe", L"setup.exe.backup"},
      {"another name", L"backup.exe", "other", L"backup.exe", L"backup.exe.backup"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.what);
    const TempFolder folder;
    app.exePath = folder / test.started;
    app.backupPath = app.exePath + L".backup";
    if (test.inPlace) WriteTestFile(folder / L"setup.exe", *test.inPlace);
    WriteTestFile(app.exePath, "whole");
    app.tmpPath.Set(folder.Path());
    WriteTestFile(UpdateFilePath(), "the new program");
    RestoreReplacedProgram();
    EXPECT_EQ(app.exePath, folder / test.runsAs);
    EXPECT_EQ(app.backupPath, folder / test.backup);
    EXPECT_EQ(ReadTestFile(app.exePath), "whole");
    EXPECT_FALSE(PathExists(app.backupPath));
  }
}

TEST_F(ReplacedProgram, IsRemovedLaterWhenThisIsTheNewOne) {
  const struct {
    const char* what;
    std::optional<std::string> downloaded;
    bool updating, stays;
  } cases[] = {{"ended between replacing and relaunching", "new", false, false},
               {"an update is under way", "new", true, true},
               {"another program was downloaded", "newer", false, true},
               {"nothing was downloaded", std::nullopt, false, true}};
  for (const auto& test : cases) {
    SCOPED_TRACE(test.what);
    DeleteFileW(UpdateFilePath().c_str());
    if (test.downloaded) WriteTestFile(UpdateFilePath(), *test.downloaded);
    WriteTestFile(app.exePath, "new");
    WriteTestFile(app.backupPath, "old");
    app.updateInProgress = test.updating;
    RemoveForgottenCopy();
    EXPECT_EQ(PathExists(app.backupPath), test.stays);
    EXPECT_EQ(ReadTestFile(app.exePath), "new");
  }
}

}  // namespace
