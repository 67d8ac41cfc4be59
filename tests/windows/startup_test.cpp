// What start-up settles before there is a window.
#include <gtest/gtest.h>

#include "app/single_instance.h"
#include "core/context.h"
#include "core/settings.h"
#include "support/temp_folder.h"
#include "system/files.h"
#include "system/text.h"

namespace {

TEST(Settings, FoldersMustExistAndFitAPathWithTheManifest) {
  const TempFolder existing;
  app.appDataPath = existing.Path();
  for (const size_t length : {0u, 247u, 248u, 259u, 260u}) {
    std::wstring folder = length == 0 ? existing / L"gone" : existing.Path();
    if (length != 0) folder.resize(length, L'\\');
    app.tmpPath.Set(folder);
    app.installPath.Set(folder);
    SaveLastTmpPath();
    SaveLastInstallPath();
    LoadSettings();
    EXPECT_EQ(*app.tmpPath.Get(), length == 247 ? folder : app.dataDir);
    EXPECT_EQ(*app.installPath.Get() == folder, length >= 247 && length <= 259);
  }
}

TEST(Settings, OnlyAValidUuidTakesThePlaceOfTheMachines) {
  LoadSettings();
  const std::string machines = app.uuid, valid = "01234567-89ab-cdef-0123-456789ABCDEF";
  for (const std::string& stored : {valid, valid.substr(1), "g" + valid.substr(1), valid.substr(1) + "0"}) {
    RegSetKeyValueA(HKEY_CURRENT_USER, WideToUtf8(app.registryKeyPath).c_str(), "UUID", REG_SZ, stored.c_str(),
                    static_cast<DWORD>(stored.size() + 1));
    LoadSettings();
    EXPECT_EQ(app.uuid, stored == valid ? valid : machines);
  }
}

TEST(CommandLine, OnlyAnUpdatedProgramRemovesItsPredecessor) {
  const TempFolder folder;
  app.backupPath = folder / L"old.exe.backup";
  for (const auto& [line, removes] : {std::pair(L"source:a updated", false), {L"updated source:b", true}}) {
    WriteTestFile(app.backupPath, "the old program");
    ParseCommandLine(line);
    EXPECT_EQ(PathExists(app.backupPath), !removes) << line;
    EXPECT_EQ(*app.selectedSource.Get(), removes ? "b" : "a");
  }
}

}  // namespace
