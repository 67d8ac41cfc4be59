#include "app/commands.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "app/context.h"
#include "app/main_menu.h"
#include "manifest/component_list.h"
#include "support/box_recorder.h"
#include "support/shell_recorder.h"
#include "support/test_manifest.h"
#include "support/test_window.h"

namespace {

// Three packages, of which the first and the last are checked.
constexpr char kManifest[] = R"(<downloader>
  <sources default="us"><source key="us" title="America"/><source key="eu" title="Europe"/></sources>
  <packages>
    <package><filename value="gta"/><default value="true"/></package>
    <package><filename value="extra"/><default value="false"/></package>
    <package><filename value="mta.exe"/><default value="true"/></package>
  </packages></downloader>)";

using Names = std::vector<std::string>;

class Commands : public testing::Test {
 protected:
  Commands() {
    app.upward.buildMainMenu = BuildMainMenu;
    app.selectedSource.Set({});
    LoadTestManifest(kManifest);
    PopulateComponentList();
  }
  ~Commands() override {
    app.upward.buildMainMenu = nullptr;
    app.isAdmin = false;
    app.exePath.clear();
    app.commandLine.clear();
    app.installList.Set({});
    app.selectedSource.Set({});
  }

  void PressInstall() const { SendMessageW(window_.Components().installButton.Window(), BM_CLICK, 0, 0); }
  void PressCancel() const { SendMessageW(window_.Installation().cancelButton.Window(), BM_CLICK, 0, 0); }

  TestWindow window_{CreateProgramWindow};
};

TEST_F(Commands, InstallWithoutRightsRelaunchesElevatedWithTheSelection) {
  const BoxRecorder noBoxes({});
  const ShellRecorder shell;
  app.exePath = L"C:\\here\\setup.exe";
  app.commandLine = L"install:old source:old";
  PressInstall();
  ASSERT_TRUE(window_.WaitUntilClosed());
  ASSERT_EQ(shell.Starts().size(), 1u);
  EXPECT_EQ(shell.Starts()[0].verb, L"runas");
  EXPECT_EQ(shell.Starts()[0].file, L"C:\\here\\setup.exe");
  EXPECT_EQ(shell.Starts()[0].parameters, L"install:gta,mta.exe source:us");
}

TEST_F(Commands, InstallWithoutSelectionOnlyWarns) {
  for (const bool isAdmin : {false, true}) {
    app.isAdmin = isAdmin;
    window_.Run([] { CheckOnlyComponent(-1); });
    BoxRecorder recorder({IDOK});
    PressInstall();
    window_.Settle();
    ASSERT_EQ(recorder.Boxes().size(), 1u);
    const RecordedBox box = recorder.Boxes()[0];
    EXPECT_EQ(box.text, L"You have to select at least one component for installation");
    EXPECT_EQ(box.caption, L"Zendora Installer");
    EXPECT_EQ(box.owner, nullptr);
    EXPECT_EQ(app.currentPage, ComponentsPage);
    EXPECT_FALSE(app.restartRequested);
    EXPECT_FALSE(app.selectionFromUser);
    EXPECT_TRUE(window_.IsOpen());
  }
}

TEST_F(Commands, InstallWithRightsShowsTheInstallationOfTheSelection) {
  const BoxRecorder noBoxes({});
  app.isAdmin = true;
  app.workerThread = ActiveThread();  // so that no second worker starts
  const HANDLE worker = app.workerThread.Get();
  PressInstall();
  EXPECT_EQ(*app.installList.Get(), (Names{"gta", "mta.exe"}));
  EXPECT_TRUE(app.selectionFromUser);
  EXPECT_EQ(app.currentPage, InstallPage);
  EXPECT_EQ(app.workerThread.Get(), worker);
  EXPECT_TRUE(window_.IsOpen());
}

TEST_F(Commands, InstallListOfTheCommandLineWinsOverTheRows) {
  const BoxRecorder noBoxes({});
  app.isAdmin = true;
  app.workerThread = ActiveThread();
  app.installList.Set({"extra"});
  PressInstall();
  EXPECT_EQ(*app.installList.Get(), (Names{"extra"}));
  EXPECT_FALSE(app.selectionFromUser);
  EXPECT_EQ(app.currentPage, InstallPage);
}

TEST_F(Commands, NothingStartsDuringAnUpdate) {
  app.updateInProgress = true;
  for (const bool isAdmin : {false, true}) {
    app.isAdmin = isAdmin;
    window_.Run(StartInstallation);
    EXPECT_EQ(app.currentPage, ComponentsPage);
    EXPECT_FALSE(app.restartRequested);
    EXPECT_TRUE(app.installList.Get()->empty());
  }
}

TEST_F(Commands, CancelBecomesExit) {
  const BoxRecorder noBoxes({});
  const ShellRecorder shell;
  app.isAdmin = true;
  app.workerThread = ActiveThread();
  PressInstall();
  PressCancel();
  window_.Settle();
  EXPECT_TRUE(app.cancelRequested);
  EXPECT_EQ(TextOf(window_.Installation().cancelButton), L"Exit");
  EXPECT_TRUE(window_.IsOpen());

  app.restartRequested = true;
  PressCancel();
  ASSERT_TRUE(window_.WaitUntilClosed());
  EXPECT_TRUE(shell.Starts().empty());  // whoever exits wants no relaunch
}

TEST_F(Commands, SourcesAreSelectedByTheirPlace) {
  const struct {
    int position;
    const char* selected;
    UINT checkedCommand;
  } cases[] = {{0, "eu", 1001}, {1, "us", 1002}, {1, "us", 1002}, {2, "us", 1002}, {-1, "us", 1002}, {0, "eu", 1001}};
  for (const auto& test : cases) {
    window_.Run([&] { SelectSource(test.position); });
    EXPECT_EQ(*app.selectedSource.Get(), test.selected);
    const HMENU sources = GetSubMenu(GetMenu(window_.Window()), 1);
    for (const UINT command : {1001u, 1002u}) {
      const bool isChecked = (GetMenuState(sources, command, MF_BYCOMMAND) & MF_CHECKED) != 0;
      EXPECT_EQ(isChecked, command == test.checkedCommand) << command << " after place " << test.position;
    }
  }
}

}  // namespace
