#include "app/environment.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "app/context.h"
#include "support/replaced_import.h"
#include "system/path_names.h"

extern "C" decltype(&RegOpenKeyExW) importedRegOpenKeyEx __asm__("__imp__RegOpenKeyExW@20");

namespace {

// What the probe finds, without a trace for the tests that come after.
class Environment : public testing::Test {
 protected:
  Environment() {
    wchar_t value[4096];
    appData_ = std::wstring(value, GetEnvironmentVariableW(L"APPDATA", value, ARRAYSIZE(value)));
  }
  ~Environment() override {
    SetEnvironmentVariableW(L"APPDATA", appData_.c_str());
    app.registryKeyPath = registryKeyPath_;
    app.userAgent = userAgent_;
    for (auto path : {&app.exePath, &app.backupPath, &app.appDataPath, &app.dataDir, &app.manifestPath}) path->clear();
    app.osMajor = app.osMinor = app.osBuild = 0;
    app.isAdmin = app.isWow64 = false;
  }

  std::wstring appData_;
  const std::wstring registryKeyPath_ = app.registryKeyPath, userAgent_ = app.userAgent;
};

// The views of the registry in which the fake lets HKEY_LOCAL_MACHINE\SOFTWARE be opened for writing.
bool grants32BitView, grantsPlain;

LSTATUS WINAPI OpenWhatIsGranted(HKEY root, const wchar_t* path, DWORD, REGSAM access, HKEY* key) {
  const bool isProbe = root == HKEY_LOCAL_MACHINE && std::wstring(path) == L"SOFTWARE";
  const bool granted = access == (KEY_WRITE | KEY_WOW64_32KEY) ? grants32BitView : access == KEY_WRITE && grantsPlain;
  if (!isProbe || !granted) return ERROR_ACCESS_DENIED;
  return RegCreateKeyExW(HKEY_CURRENT_USER, app.registryKeyPath.c_str(), 0, nullptr, 0, KEY_READ, nullptr, key,
                         nullptr);
}

}  // namespace

TEST_F(Environment, UserAgent) {
  EXPECT_EQ(BuildUserAgent(10, 0, 19045, true), L"Zendora Installer/4.0.8 (Windows NT 10.0; Win64; x64; Build/19045)");
  EXPECT_EQ(BuildUserAgent(6, 1, 7601, false), L"Zendora Installer/4.0.8 (Windows NT 6.1; Win32; x32; Build/7601)");
  EXPECT_EQ(BuildUserAgent(0, 0, 0, false), L"Zendora Installer/4.0.8 (Windows NT 0.0; Win32; x32; Build/0)");
}

TEST_F(Environment, DescribesThisProcessAndSystem) {
  ProbeEnvironment();
  wchar_t path[MAX_PATH];
  GetModuleFileNameW(nullptr, path, MAX_PATH);
  EXPECT_EQ(app.exePath, path);
  EXPECT_EQ(app.backupPath, app.exePath + L".backup");
  EXPECT_EQ(app.registryKeyPath, L"SOFTWARE\\Zendora Installer");
  SYSTEM_INFO system;
  GetNativeSystemInfo(&system);
  EXPECT_EQ(app.isWow64, system.wProcessorArchitecture != PROCESSOR_ARCHITECTURE_INTEL);
  EXPECT_GE(app.osMajor, 6u);
  EXPECT_NE(app.osBuild, 0u);
  EXPECT_LT(app.osBuild, 0x10000000u);  // without the bits that tell a checked build
  EXPECT_EQ(app.userAgent, BuildUserAgent(app.osMajor, app.osMinor, app.osBuild, app.isWow64));
}

TEST_F(Environment, VersionIsAskedForOnce) {
  app.osMajor = 1;
  app.osBuild = 3;
  ProbeEnvironment();
  EXPECT_EQ(app.osMajor, 1u);
  EXPECT_EQ(app.osBuild, 3u);
}

TEST_F(Environment, ApplicationDataMustFitAPath) {
  constexpr size_t kAdded = std::size(L"\\Zendora\\Installer\\manifest.xml") - 1;
  const std::wstring longest = L"C:\\" + std::wstring(kMaxPathLength - kAdded - 3, L'a');
  const std::wstring tooLong = longest + L"a";
  const std::wstring beyondAnyPath = L"C:\\" + std::wstring(1000, L'a');
  struct Case {
    const wchar_t* value;
    std::wstring appDataPath;
  };
  const Case cases[] = {
      {L"C:\\users\\me\\AppData\\Roaming", L"C:\\users\\me\\AppData\\Roaming"},
      {longest.c_str(), longest},
      {tooLong.c_str(), L""},
      {beyondAnyPath.c_str(), L""},
      {nullptr, L""},
  };
  for (const Case& c : cases) {
    SetEnvironmentVariableW(L"APPDATA", c.value);
    ProbeEnvironment();
    EXPECT_EQ(app.appDataPath, c.appDataPath);
    EXPECT_EQ(app.dataDir, c.appDataPath + L"\\Zendora\\Installer");
    EXPECT_EQ(app.manifestPath, c.appDataPath + L"\\Zendora\\Installer\\manifest.xml");
    EXPECT_LE(app.manifestPath.size(), kMaxPathLength);
  }
}

TEST_F(Environment, AdministratorsMayWriteMachineSettingsInEitherView) {
  const ReplacedImport registry(importedRegOpenKeyEx, OpenWhatIsGranted);
  for (const bool in32BitView : {false, true}) {
    for (const bool plain : {false, true}) {
      grants32BitView = in32BitView;
      grantsPlain = plain;
      app.isAdmin = !(in32BitView || plain);
      ProbeAdministrator();
      EXPECT_EQ(app.isAdmin, in32BitView || plain) << in32BitView << plain;
    }
  }
}
