#include "app/settings.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "app/context.h"
#include "support/temp_folder.h"
#include "system/path_names.h"
#include "system/text.h"

namespace {

class Settings : public testing::Test {
 protected:
  Settings() {
    RegDeleteTreeW(HKEY_CURRENT_USER, app.registryKeyPath.c_str());
    app.appDataPath = folder_.Path();
    app.dataDir = folder_ / L"data";
  }
  ~Settings() override {
    RegDeleteTreeW(HKEY_CURRENT_USER, app.registryKeyPath.c_str());
    LoadSettings();  // the defaults
    app.appDataPath.clear();
    app.tmpPath.Set({});
    app.uiLanguage = LANG_ENGLISH;
  }

  TempFolder folder_;
};

TEST_F(Settings, SavedChoicesComeBack) {
  app.uiLanguage = LANG_TURKISH;
  app.deleteTmpFiles = true;
  app.maxDownloadSpeedKB = 0x00400001;
  for (const auto save : {SaveLanguage, SaveDeleteTmpFiles, SaveMaxDownloadSpeed}) save();
  app.uiLanguage = LANG_ENGLISH;
  LoadSettings();
  EXPECT_EQ(app.uiLanguage, static_cast<uint32_t>(LANG_TURKISH));
  EXPECT_TRUE(app.deleteTmpFiles);
  EXPECT_EQ(app.maxDownloadSpeedKB, 0x00400001u);
  EXPECT_EQ(app.speedLimitBytes, 1024u);  // what one word holds of it
}

TEST_F(Settings, FoldersMustExistAndFitAPathWithTheManifest) {
  for (const size_t length : {0u, 247u, 248u, 259u, 260u}) {
    std::wstring folder = length == 0 ? folder_ / L"gone" : folder_.Path();
    if (length != 0) folder.resize(length, L'\\');
    app.tmpPath.Set(folder);
    app.installPath.Set(folder);
    SaveLastTmpPath();
    SaveLastInstallPath();
    LoadSettings();
    EXPECT_EQ(*app.tmpPath.Get(), length == 247 ? folder : app.dataDir);
    EXPECT_EQ(app.manifestPath, JoinPath(*app.tmpPath.Get(), L"manifest.xml"));
    EXPECT_EQ(*app.installPath.Get() == folder, length >= 247 && length <= 259);
  }
}

TEST_F(Settings, OnlyAValidUuidTakesThePlaceOfTheMachines) {
  LoadSettings();
  const std::string machines = app.uuid, valid = "01234567-89ab-cdef-0123-456789ABCDEF";
  for (const std::string& stored : {valid, valid.substr(1), "g" + valid.substr(1), valid.substr(1) + "0"}) {
    RegSetKeyValueA(HKEY_CURRENT_USER, WideToUtf8(app.registryKeyPath).c_str(), "UUID", REG_SZ, stored.c_str(),
                    static_cast<DWORD>(stored.size() + 1));
    LoadSettings();
    EXPECT_EQ(app.uuid, stored == valid ? valid : machines);
  }
}

}  // namespace
