#include "app/command_line.h"

#include <gtest/gtest.h>

#include "app/context.h"
#include "support/temp_folder.h"
#include "system/files.h"
#include "system/path_names.h"

namespace {

class CommandLine : public testing::Test {
 protected:
  CommandLine() { app.backupPath = folder_ / L"program.exe.backup"; }
  ~CommandLine() override {
    app.backupPath.clear();
    app.commandLine.clear();
    app.installList.Set({});
    app.selectedSource.Set({});
  }

  TempFolder folder_;
};

}  // namespace

TEST_F(CommandLine, SetsOnlyWhatItNames) {
  ParseCommandLine(L"install:gta,mtasa source:main");
  EXPECT_EQ(*app.installList.Get(), (std::vector<std::string>{"gta", "mtasa"}));
  EXPECT_EQ(*app.selectedSource.Get(), "main");
  ParseCommandLine(L"source:\u0416");
  EXPECT_EQ(*app.installList.Get(), (std::vector<std::string>{"gta", "mtasa"}));
  EXPECT_EQ(*app.selectedSource.Get(), "\xD0\x96");
  ParseCommandLine(L"install:");
  EXPECT_TRUE(app.installList.Get()->empty());
  EXPECT_EQ(app.commandLine, L"install:");
}

TEST_F(CommandLine, BackupGoesOnlyAfterAnUpdate) {
  WriteTestFile(app.backupPath, "old program");
  ParseCommandLine(L"install:gta updated");
  EXPECT_TRUE(PathExists(app.backupPath));
  ParseCommandLine(L"updated install:mtasa");
  EXPECT_FALSE(PathExists(app.backupPath));
  EXPECT_EQ(*app.installList.Get(), std::vector<std::string>{"mtasa"});
}

TEST_F(CommandLine, TooLongOneIsAppliedWholeButKeptCut) {
  const std::wstring fits = L"install:" + std::wstring(kMaxPathLength - 8, L'a');
  ParseCommandLine(fits);
  EXPECT_EQ(app.commandLine, fits);
  ParseCommandLine(fits + L"b source:main");
  EXPECT_EQ(app.commandLine, fits);
  EXPECT_EQ(app.installList.Get()->front(), std::string(kMaxPathLength - 8, 'a') + "b");
  EXPECT_EQ(*app.selectedSource.Get(), "main");

  const std::wstring pairAtTheEnd = std::wstring(kMaxPathLength - 1, L'a') + L"\U0001F600";
  ParseCommandLine(pairAtTheEnd);
  EXPECT_EQ(app.commandLine, std::wstring(kMaxPathLength - 1, L'a'));
}
