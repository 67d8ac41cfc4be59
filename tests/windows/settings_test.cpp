#include "app/settings.h"

#include <gtest/gtest.h>
#include <windows.h>
// Needs windows.h before it.
#include <rpc.h>

#include <optional>

#include "app/context.h"
#include "support/replaced_import.h"
#include "support/temp_folder.h"
#include "system/files.h"
#include "system/handles.h"
#include "system/path_names.h"

extern "C" {
extern decltype(&RegOpenKeyExW) importedRegOpenKeyEx __asm__("__imp__RegOpenKeyExW@20");
extern decltype(&UuidCreate) importedUuidCreate __asm__("__imp__UuidCreate@4");
}

namespace {

constexpr char kStoredUuid[] = "01234567-89ab-cdef-0123-456789ABCDEF";

// The settings key of the tests, without a value before and after each test.
class Settings : public testing::Test {
 protected:
  Settings() {
    DeleteKey();
    app.appDataPath = folder_.Path();
    app.dataDir = folder_ / L"data";
  }
  ~Settings() override {
    DeleteKey();
    for (auto path : {&app.appDataPath, &app.dataDir, &app.manifestPath}) path->clear();
    app.tmpPath.Set({});
    app.installPath.Set({});
    app.uuid.clear();
    app.uiLanguage = LANG_ENGLISH;
    app.deleteTmpFiles = false;
    app.maxDownloadSpeedKB = 0;
    app.speedLimitBytes = 0;
  }

  static void DeleteKey() { RegDeleteTreeW(HKEY_CURRENT_USER, app.registryKeyPath.c_str()); }

  static void Store(const wchar_t* name, DWORD type, const void* data, size_t size) {
    ASSERT_EQ(
        RegSetKeyValueW(HKEY_CURRENT_USER, app.registryKeyPath.c_str(), name, type, data, static_cast<DWORD>(size)),
        ERROR_SUCCESS);
  }
  static void StoreNumber(const wchar_t* name, DWORD number) { Store(name, REG_DWORD, &number, sizeof number); }
  static void StoreText(const wchar_t* name, const std::wstring& text) {
    Store(name, REG_SZ, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
  }

  // A value exactly as it stands in the registry: its type and bytes.
  struct Stored {
    DWORD type;
    std::string bytes;
    bool operator==(const Stored&) const = default;
  };
  static std::optional<Stored> Read(const wchar_t* name) {
    BYTE bytes[1024];
    DWORD type = 0, size = sizeof bytes;
    if (RegGetValueW(HKEY_CURRENT_USER, app.registryKeyPath.c_str(), name, RRF_RT_ANY | RRF_NOEXPAND, &type, bytes,
                     &size) != ERROR_SUCCESS) {
      return std::nullopt;
    }
    return Stored{type, std::string(reinterpret_cast<const char*>(bytes), size)};
  }
  static Stored Number(DWORD number) {
    return {REG_DWORD, std::string(reinterpret_cast<const char*>(&number), sizeof number)};
  }
  static Stored Text(const std::wstring& text) {
    return {REG_SZ, std::string(reinterpret_cast<const char*>(text.c_str()), (text.size() + 1) * sizeof(wchar_t))};
  }

  // An existing folder whose path is that long.
  std::wstring FolderOfLength(size_t length) {
    std::wstring path = folder_.Path();
    while (path.size() + 2 < length)
      path = JoinPath(path, std::wstring(std::min<size_t>(length - path.size() - 1, 60), L'a'));
    path.resize(length, L'b');
    EXPECT_EQ(CreateDirectories(path), 0u);
    return path;
  }

  TempFolder folder_;
};

constexpr wchar_t kCryptography[] = L"SOFTWARE\\Microsoft\\Cryptography";

std::string MachineGuid() {
  RegKey key;
  char text[64] = "";
  DWORD size = sizeof text;
  EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, kCryptography, 0, KEY_READ | KEY_WOW64_64KEY, key.Receive()),
            ERROR_SUCCESS);
  EXPECT_EQ(RegGetValueA(key.Get(), nullptr, "MachineGuid", RRF_RT_REG_SZ, nullptr, text, &size), ERROR_SUCCESS);
  return text;
}

decltype(&RegOpenKeyExW) realRegOpenKeyEx;
bool refusesAllViews;

// A 32-bit system knows no 64-bit view; a locked-down one may refuse the key altogether.
LSTATUS WINAPI OpenWithoutMachineGuid(HKEY root, const wchar_t* path, DWORD options, REGSAM access, HKEY* key) {
  const bool isMachineGuid = root == HKEY_LOCAL_MACHINE && std::wstring(path) == kCryptography;
  if (!isMachineGuid) return realRegOpenKeyEx(root, path, options, access, key);
  if (refusesAllViews || access != KEY_READ) return ERROR_ACCESS_DENIED;
  return realRegOpenKeyEx(root, path, options, access | KEY_WOW64_64KEY, key);
}

RPC_STATUS RPC_ENTRY FailUuidCreate(UUID*) { return RPC_S_UUID_NO_ADDRESS; }

}  // namespace

TEST_F(Settings, FirstRun) {
  LoadSettings();
  EXPECT_EQ(app.uuid, MachineGuid());
  EXPECT_EQ(Read(L"UUID"), Text(std::wstring(app.uuid.begin(), app.uuid.end())));
  EXPECT_EQ(*app.tmpPath.Get(), app.dataDir);
  EXPECT_EQ(app.manifestPath, app.dataDir + L"\\manifest.xml");
  EXPECT_EQ(LastComponent(*app.installPath.Get()), L"Games");
  EXPECT_FALSE(app.deleteTmpFiles);
  EXPECT_EQ(app.maxDownloadSpeedKB, 0u);
  EXPECT_EQ(app.speedLimitBytes, 0u);
  for (const wchar_t* name :
       {L"Language", L"LastTmpPath", L"LastInstallPath", L"DeleteTmpFiles", L"MaxDownloadSpeed"}) {
    EXPECT_EQ(Read(name), std::nullopt) << testing::PrintToString(name);
  }
}

TEST_F(Settings, EachSaveWritesItsOneValue) {
  app.uiLanguage = LANG_POLISH;
  SaveLanguage();
  EXPECT_EQ(Read(L"Language"), Number(LANG_POLISH));
  EXPECT_EQ(Read(L"MaxDownloadSpeed"), std::nullopt);
  app.maxDownloadSpeedKB = 100;
  SaveMaxDownloadSpeed();
  EXPECT_EQ(Read(L"MaxDownloadSpeed"), Number(100));
  app.deleteTmpFiles = true;
  SaveDeleteTmpFiles();
  EXPECT_EQ(Read(L"DeleteTmpFiles"), Number(1));
  app.deleteTmpFiles = false;
  SaveDeleteTmpFiles();
  EXPECT_EQ(Read(L"DeleteTmpFiles"), Number(0));
  app.installPath.Set(L"C:\\Games \u0416");
  SaveLastInstallPath();
  EXPECT_EQ(Read(L"LastInstallPath"), Text(L"C:\\Games \u0416"));
  app.tmpPath.Set(L"C:\\Temp");
  SaveLastTmpPath();
  EXPECT_EQ(Read(L"LastTmpPath"), Text(L"C:\\Temp"));
  EXPECT_EQ(Read(L"UUID"), std::nullopt);
}

TEST_F(Settings, SavedChoicesComeBack) {
  app.uiLanguage = LANG_TURKISH;
  app.deleteTmpFiles = true;
  app.maxDownloadSpeedKB = 100;
  app.tmpPath.Set(FolderOfLength(100));
  app.installPath.Set(folder_.Path());
  SaveLanguage();
  SaveDeleteTmpFiles();
  SaveMaxDownloadSpeed();
  SaveLastTmpPath();
  SaveLastInstallPath();
  const std::wstring tmpPath = *app.tmpPath.Get();
  app.uiLanguage = LANG_ENGLISH;
  app.deleteTmpFiles = false;
  app.maxDownloadSpeedKB = 0;
  app.tmpPath.Set({});
  app.installPath.Set({});

  LoadSettings();
  EXPECT_EQ(app.uiLanguage, static_cast<uint32_t>(LANG_TURKISH));
  EXPECT_TRUE(app.deleteTmpFiles);
  EXPECT_EQ(app.maxDownloadSpeedKB, 100u);
  EXPECT_EQ(app.speedLimitBytes, 102400u);
  EXPECT_EQ(*app.tmpPath.Get(), tmpPath);
  EXPECT_EQ(app.manifestPath, tmpPath + L"\\manifest.xml");
  EXPECT_EQ(*app.installPath.Get(), folder_.Path());
}

TEST_F(Settings, NumbersAreReadFromFourBytesOnly) {
  struct Case {
    DWORD type;
    std::string bytes;
    uint32_t number;
  };
  using namespace std::string_literals;
  const Case cases[] = {
      {REG_DWORD, "\x05\x01\0\0"s, 0x105}, {REG_BINARY, "\x05\x01\0\0"s, 0x105},    {REG_BINARY, "\x05\x01\0"s, 0},
      {REG_BINARY, "\x05\x01\0\0\0"s, 0},  {REG_QWORD, "\x05\x01\0\0\0\0\0\0"s, 0}, {REG_SZ, "5\0\0\0"s, 0},
      {REG_NONE, "\x05\x01\0\0"s, 0},
  };
  for (const Case& c : cases) {
    Store(L"MaxDownloadSpeed", c.type, c.bytes.data(), c.bytes.size());
    LoadSettings();
    EXPECT_EQ(app.maxDownloadSpeedKB, c.number) << "type " << c.type << ", " << c.bytes.size() << " bytes";
  }
}

TEST_F(Settings, OnlyOneDeletesTemporaryFiles) {
  for (const DWORD number : {2u, 1u, 0u, 0xFFFFFFFFu}) {
    StoreNumber(L"DeleteTmpFiles", number);
    LoadSettings();
    EXPECT_EQ(app.deleteTmpFiles, number == 1) << number;
  }
}

TEST_F(Settings, SpeedLimitInBytesIsCutToOneWord) {
  StoreNumber(L"MaxDownloadSpeed", 0x00400001);
  LoadSettings();
  EXPECT_EQ(app.speedLimitBytes, 1024u);
}

TEST_F(Settings, LanguageThatIsNotOfferedLeavesEnglish) {
  StoreNumber(L"Language", LANG_FRENCH);
  LoadSettings();
  EXPECT_EQ(app.uiLanguage, static_cast<uint32_t>(LANG_ENGLISH));
}

TEST_F(Settings, FolderMustExist) {
  const std::wstring file = folder_ / L"file";
  WriteTestFile(file, "");
  for (const std::wstring& path : {folder_ / L"gone", file, std::wstring()}) {
    StoreText(L"LastTmpPath", path);
    StoreText(L"LastInstallPath", path);
    LoadSettings();
    EXPECT_EQ(*app.tmpPath.Get(), app.dataDir);
    EXPECT_EQ(app.manifestPath, app.dataDir + L"\\manifest.xml");
    EXPECT_EQ(LastComponent(*app.installPath.Get()), L"Games");
    EXPECT_EQ(Read(L"LastTmpPath"), Text(path));  // kept until the user picks another
  }
}

TEST_F(Settings, FolderIsATextWithOrWithoutTerminator) {
  Store(L"LastTmpPath", REG_SZ, folder_.Path().data(), folder_.Path().size() * sizeof(wchar_t));
  LoadSettings();
  EXPECT_EQ(*app.tmpPath.Get(), folder_.Path());
  Store(L"LastTmpPath", REG_MULTI_SZ, folder_.Path().data(), folder_.Path().size() * sizeof(wchar_t));
  LoadSettings();
  EXPECT_EQ(*app.tmpPath.Get(), app.dataDir);
}

TEST_F(Settings, FolderMustFitAPathAndSoMustItsManifest) {
  constexpr size_t kManifestAdds = std::size(L"\\manifest.xml") - 1;
  const std::wstring longest = FolderOfLength(kMaxPathLength - kManifestAdds);
  StoreText(L"LastTmpPath", longest);
  LoadSettings();
  EXPECT_EQ(*app.tmpPath.Get(), longest);
  EXPECT_EQ(app.manifestPath.size(), kMaxPathLength);

  StoreText(L"LastTmpPath", FolderOfLength(kMaxPathLength - kManifestAdds + 1));
  LoadSettings();
  EXPECT_EQ(*app.tmpPath.Get(), app.dataDir);

  // The same folder, spelled so that 259 characters still do and 260 don't.
  const auto spelled = [&](size_t length) {
    return folder_.Path() + std::wstring(length - folder_.Path().size(), L'\\');
  };
  for (const size_t length : {259u, 260u}) {
    StoreText(L"LastInstallPath", spelled(length));
    LoadSettings();
    EXPECT_EQ(*app.installPath.Get() == spelled(length), length == 259) << length;
  }
}

TEST_F(Settings, UuidIsKeptOnlyWhenItIsOne) {
  struct Case {
    std::string stored;
    bool valid;
  };
  const Case cases[] = {
      {kStoredUuid, true},
      {"00000000-0000-0000-0000-000000000000", true},
      {"", false},
      {"01234567-89ab-cdef-0123-456789ABCDE", false},
      {"01234567-89ab-cdef-0123-456789ABCDEF0", false},
      {"{01234567-89ab-cdef-0123-456789ABCDEF}", false},
      {"01234567-89ab-cdef-0123-456789ABCDEF-and-more", false},
      {"g1234567-89ab-cdef-0123-456789ABCDEF", false},
      {"01234567-89ab-cdef-0123-456789ABCDEg", false},
      {"0123456-789ab-cdef-0123-456789ABCDEF", false},
      {"01234567089ab-cdef-0123-456789ABCDEF", false},
      {"------------------------------------", false},
  };
  for (const Case& c : cases) {
    StoreText(L"UUID", std::wstring(c.stored.begin(), c.stored.end()));
    LoadSettings();
    EXPECT_EQ(app.uuid, c.valid ? c.stored : MachineGuid()) << c.stored;
    EXPECT_EQ(Read(L"UUID"), Text(std::wstring(app.uuid.begin(), app.uuid.end()))) << c.stored;
  }
}

TEST_F(Settings, UuidWhereTheMachineHasNone) {
  const std::string machineGuid = MachineGuid();
  const ReplacedImport registry(importedRegOpenKeyEx, OpenWithoutMachineGuid);
  realRegOpenKeyEx = registry.Original();
  refusesAllViews = false;
  LoadSettings();
  EXPECT_EQ(app.uuid, machineGuid);  // from the plain view

  DeleteKey();
  refusesAllViews = true;
  {
    const ReplacedImport uuids(importedUuidCreate, FailUuidCreate);
    LoadSettings();
    EXPECT_EQ(app.uuid, "");
    EXPECT_EQ(Read(L"UUID"), std::nullopt);
  }
  LoadSettings();
  const std::string created = app.uuid;
  EXPECT_EQ(created.size(), 36u);
  EXPECT_EQ(created.find_first_not_of("0123456789abcdef-"), std::string::npos);
  EXPECT_NE(created, machineGuid);
  LoadSettings();
  EXPECT_EQ(app.uuid, created);  // stored, so the next start has it
}

TEST_F(Settings, UnwritableKeyIsSilent) {
  const std::wstring keyPath = std::exchange(app.registryKeyPath, L"SOFTWARE\\" + std::wstring(300, L'a'));
  app.maxDownloadSpeedKB = 7;
  SaveMaxDownloadSpeed();
  EXPECT_EQ(app.maxDownloadSpeedKB, 7u);
  LoadSettings();
  EXPECT_EQ(app.uuid, MachineGuid());
  EXPECT_EQ(*app.tmpPath.Get(), app.dataDir);
  app.registryKeyPath = keyPath;
}
