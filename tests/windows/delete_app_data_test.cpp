#include "app/delete_app_data.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <optional>
#include <string>

#include "app/context.h"
#include "app/localization.h"
#include "app/settings.h"
#include "support/box_recorder.h"
#include "support/temp_folder.h"
#include "support/test_window.h"
#include "system/files.h"
#include "system/handles.h"

namespace {

bool HasSettings(HKEY root) {
  RegKey key;
  return RegOpenKeyExW(root, app.registryKeyPath.c_str(), 0, KEY_READ, key.Receive()) == ERROR_SUCCESS;
}

void WriteSetting(HKEY root, const std::wstring& subkey) {
  const std::wstring path = app.registryKeyPath + subkey;
  const DWORD value = 1;
  EXPECT_EQ(RegSetKeyValueW(root, path.c_str(), L"Setting", REG_DWORD, &value, sizeof value), ERROR_SUCCESS);
}

class DeleteAppDataTest : public testing::Test {
 protected:
  DeleteAppDataTest() {
    app.dataDir = folder_ / L"Zendora\\Installer";
    app.tmpPath.Set(folder_ / L"downloads");
    WriteTestFile(app.dataDir + L"\\manifest.xml", "manifest");
    WriteTestFile(app.dataDir + L"\\sub\\file", "file");
    WriteTestFile(folder_ / L"downloads\\game.zip", "zip");
    WriteTestFile(folder_ / L"other\\file", "file");
    for (const HKEY root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
      WriteSetting(root, L"");
      WriteSetting(root, L"\\Deeper\\Still");
    }
  }
  ~DeleteAppDataTest() override {
    RegDeleteTreeW(HKEY_CURRENT_USER, app.registryKeyPath.c_str());
    RegDeleteTreeW(HKEY_LOCAL_MACHINE, app.registryKeyPath.c_str());
    app.dataDir.clear();
    app.tmpPath.Set({});
  }

  // Chooses the menu command and returns the boxes that it shows.
  std::vector<RecordedBox> Choose(std::initializer_list<int> answers) const {
    BoxRecorder boxes(answers);
    SendMessageW(window_.Window(), WM_COMMAND, COMMAND_DELETE_APP_DATA, 0);
    return boxes.Boxes();
  }
  std::wstring Question(std::initializer_list<std::wstring> folders) const {
    std::wstring text = L"Following data will be deleted:\n- Application registry items";
    for (const std::wstring& folder : folders) text += L"\n- Folder: " + folder;
    return text;
  }
  void ExpectNothingDeleted() const {
    EXPECT_TRUE(HasSettings(HKEY_CURRENT_USER));
    EXPECT_TRUE(HasSettings(HKEY_LOCAL_MACHINE));
    EXPECT_TRUE(PathExists(app.dataDir + L"\\sub\\file"));
    EXPECT_TRUE(PathExists(folder_ / L"downloads\\game.zip"));
  }

  TempFolder folder_;
  TestWindow window_{CreateProgramWindow};
};

TEST_F(DeleteAppDataTest, RemovesSettingsAndBothFolders) {
  const auto boxes = Choose({IDYES, IDOK});
  ASSERT_EQ(boxes.size(), 2u);
  EXPECT_EQ(boxes[0].text, Question({app.dataDir, folder_ / L"downloads"}));
  EXPECT_EQ(boxes[0].buttons, (std::vector<int>{IDYES, IDNO}));
  EXPECT_EQ(boxes[1].text, L"Application data is deleted");
  EXPECT_EQ(boxes[1].buttons, (std::vector<int>{IDOK}));
  for (const RecordedBox& box : boxes) {
    EXPECT_EQ(box.caption, L"Zendora Installer");
    EXPECT_EQ(box.owner, window_.Window());
  }
  EXPECT_FALSE(HasSettings(HKEY_CURRENT_USER));
  EXPECT_FALSE(HasSettings(HKEY_LOCAL_MACHINE));
  EXPECT_FALSE(PathExists(app.dataDir));
  EXPECT_FALSE(PathExists(folder_ / L"downloads"));
  EXPECT_TRUE(PathExists(folder_ / L"other\\file"));
  EXPECT_TRUE(IsWindow(window_.Window()));
}

TEST_F(DeleteAppDataTest, DoesNothingWithoutAYes) {
  Choose({IDNO});
  ExpectNothingDeleted();
}

TEST_F(DeleteAppDataTest, NextStartIsAFirstStart) {
  const std::wstring appDataPath = folder_ / L"appdata";
  app.maxDownloadSpeedKB = 300;
  app.deleteTmpFiles = true;
  SaveMaxDownloadSpeed();
  SaveDeleteTmpFiles();
  Choose({IDYES, IDOK});
  EXPECT_EQ(app.maxDownloadSpeedKB, 300u) << "the program goes on with what it has";

  LoadSettings();
  EXPECT_EQ(app.maxDownloadSpeedKB, 0u);
  EXPECT_FALSE(app.deleteTmpFiles);
  EXPECT_EQ(*app.tmpPath.Get(), app.dataDir);
  EXPECT_EQ(app.uuid.size(), 36u);
  EXPECT_TRUE(HasSettings(HKEY_CURRENT_USER)) << "the identifier is stored again";
}

}  // namespace
