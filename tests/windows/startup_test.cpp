// What start-up settles before there is a window.
#include <gtest/gtest.h>

#include <optional>

#include "app/environment.h"
#include "app/localization.h"
#include "app/replaced_program.h"
#include "app/settings.h"
#include "app/single_instance.h"
#include "manifest/default_install_path.h"
#include "support/box_recorder.h"
#include "support/shell_recorder.h"
#include "support/temp_folder.h"
#include "support/test_window.h"
#include "system/files.h"
#include "system/text.h"

extern "C" decltype(&GetUserDefaultUILanguage) importedUserLanguage __asm__("__imp__GetUserDefaultUILanguage@0");

namespace {

TEST(SingleInstance, HandsItsWholeCommandLineToTheFirstOrNothing) {
  const KernelHandle mutexOfFirst(CreateMutexW(nullptr, FALSE, kApplicationId));
  const TestWindow window(CreateProgramWindow);
  for (const size_t length : {259u, 260u}) {  // the longest that fits, and one that doesn't
    app.commandLine = L"old";
    EXPECT_FALSE(ClaimSingleInstance(std::wstring(length, L'a')));
    EXPECT_EQ(app.commandLine, length == 259 ? std::wstring(length, L'a') : L"old");
  }
}

TEST(SingleInstance, ShowsAFirstThatStaysInTheTaskManager) {
  const KernelHandle mutexOfFirst(CreateMutexW(nullptr, FALSE, kApplicationId));
  const ShellRecorder shell;
  const BoxRecorder boxes({IDOK});
  EXPECT_FALSE(ClaimSingleInstance(L""));
  EXPECT_EQ(app.startupWaitMs, 1000u);
  EXPECT_EQ(shell.Starts().at(0).file, SystemFilePath(L"taskmgr.exe"));
}

TEST(Environment, UserAgentTellsTheSystem) {
  EXPECT_EQ(BuildUserAgent(10, 0, 19045, true), L"Zendora Installer/4.0.8 (Windows NT 10.0; Win64; x64; Build/19045)");
}

LANGID windowsLanguage;
LANGID WINAPI GiveWindowsLanguage() { return windowsLanguage; }

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
}

TEST(Settings, FoldersMustExistAndFitAPathWithTheManifest) {
  const TempFolder existing;
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

TEST(DefaultInstallPath, ExistingGamesFolderWinsOverTheVolumeOfTheApplicationData) {
  if (PathExists(L"C:\\Games") || !IsDirectory(L"Z:\\") || PathExists(L"Z:\\Games")) {
    GTEST_SKIP() << "needs two drives without a folder for games";
  }
  app.appDataPath = L"Z:\\some\\folder";
  DefaultInstallPath();
  EXPECT_EQ(*app.installPath.Get(), L"Z:\\Games");
  CreateDirectoryW(L"C:\\Games", nullptr);
  DefaultInstallPath();
  EXPECT_TRUE(RemoveDirectoryW(L"C:\\Games"));
  EXPECT_EQ(*app.installPath.Get(), L"C:\\Games");
}

TEST(ReplacedProgram, TakesItsPlaceAgainWhenItIsStarted) {
  const struct {
    const wchar_t* started;
    std::optional<std::string> inPlace;
    const wchar_t* runsAs;
  } cases[] = {
      {L"setup.exe.backup", std::nullopt, L"setup.exe"},              // ended before the new one was there
      {L"setup.exe.backup", "half", L"setup.exe"},                    // ended while the new one was copied
      {L"setup.exe.backup", "the new program", L"setup.exe.backup"},  // beside the whole new one
      {L"backup.exe", "other", L"backup.exe"},
  };
  for (const auto& test : cases) {
    const TempFolder folder;
    app.exePath = folder / test.started;
    app.tmpPath.Set(folder.Path());
    if (test.inPlace) WriteTestFile(folder / L"setup.exe", *test.inPlace);
    WriteTestFile(app.exePath, "whole");
    WriteTestFile(UpdateFilePath(), "the new program");
    RestoreReplacedProgram();
    EXPECT_EQ(app.exePath, folder / test.runsAs);
    EXPECT_EQ(ReadTestFile(app.exePath), "whole");
  }
}

TEST(ReplacedProgram, IsRemovedLaterOnlyWhenThisIsTheNewOne) {
  const TempFolder folder;
  app.exePath = folder / L"setup.exe";
  app.backupPath = folder / L"setup.exe.backup";
  app.tmpPath.Set(folder.Path());
  WriteTestFile(app.exePath, "new");
  WriteTestFile(app.backupPath, "old");
  RemoveForgottenCopy();
  EXPECT_TRUE(PathExists(app.backupPath)) << "nothing was downloaded";
  WriteTestFile(UpdateFilePath(), "newer");
  RemoveForgottenCopy();
  EXPECT_TRUE(PathExists(app.backupPath)) << "another program was downloaded";
  WriteTestFile(UpdateFilePath(), "new");
  RemoveForgottenCopy();
  EXPECT_FALSE(PathExists(app.backupPath));
}

}  // namespace
