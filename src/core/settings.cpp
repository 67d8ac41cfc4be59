#include "core/settings.h"

#include <windows.h>
// Needs windows.h before it.
#include <rpc.h>

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "core/context.h"
#include "core/localization.h"
#include "system/files.h"
#include "system/path_names.h"
#include "system/registry.h"

namespace {

constexpr wchar_t kLanguage[] = L"Language";
constexpr char kUuid[] = "UUID";
constexpr wchar_t kLastTmpPath[] = L"LastTmpPath";
constexpr wchar_t kLastInstallPath[] = L"LastInstallPath";
constexpr wchar_t kDeleteTmpFiles[] = L"DeleteTmpFiles";
constexpr wchar_t kMaxDownloadSpeed[] = L"MaxDownloadSpeed";

constexpr size_t kUuidLength = 36;

// The readers give 0 or the empty text for a key that is not open and for a value that is missing, of another type
// or too long.

uint32_t ReadNumber(const RegKey& key, const wchar_t* name) {
  DWORD number = 0, size = sizeof number;
  if (!key) return 0;
  const LSTATUS status = RegGetValueW(key.Get(), nullptr, name, RRF_RT_DWORD, nullptr, &number, &size);
  return status == ERROR_SUCCESS ? number : 0;
}

std::wstring ReadPath(const RegKey& key, const wchar_t* name) {
  return key ? ReadRegistryText(key.Get(), nullptr, name).value_or(L"") : L"";
}

std::string ReadUuid(const RegKey& key, const char* name) {
  char uuid[kUuidLength + 3];
  DWORD size = sizeof uuid;
  if (!key) return {};
  const LSTATUS status = RegGetValueA(key.Get(), nullptr, name, RRF_RT_REG_SZ, nullptr, uuid, &size);
  return status == ERROR_SUCCESS ? uuid : "";
}

RegKey OpenForWriting() {
  RegKey key;
  RegCreateKeyExW(HKEY_CURRENT_USER, app.registryKeyPath.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_WRITE,
                  nullptr, key.Receive(), nullptr);
  return key;
}

void WriteNumber(const wchar_t* name, DWORD number) {
  if (const RegKey key = OpenForWriting()) {
    RegSetKeyValueW(key.Get(), nullptr, name, REG_DWORD, &number, sizeof number);
  }
}

void WritePath(const wchar_t* name, const std::wstring& path) {
  const auto size = static_cast<DWORD>((path.size() + 1) * sizeof(wchar_t));
  if (const RegKey key = OpenForWriting()) RegSetKeyValueW(key.Get(), nullptr, name, REG_SZ, path.c_str(), size);
}

void SaveUuid() {
  const auto size = static_cast<DWORD>(app.uuid.size() + 1);
  if (const RegKey key = OpenForWriting()) {
    RegSetKeyValueA(key.Get(), nullptr, kUuid, REG_SZ, app.uuid.c_str(), size);
  }
}

bool IsHexDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }

bool IsUuid(std::string_view text) {
  if (text.size() != kUuidLength) return false;
  for (size_t i = 0; i < text.size(); ++i) {
    const bool isDash = i == 8 || i == 13 || i == 18 || i == 23;
    if (isDash ? text[i] != '-' : !IsHexDigit(text[i])) return false;
  }
  return true;
}

// The registry of 64-bit Windows keeps it in the 64-bit view only.
std::string MachineUuid() {
  constexpr wchar_t kCryptography[] = L"SOFTWARE\\Microsoft\\Cryptography";
  RegKey key;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, kCryptography, 0, KEY_READ | KEY_WOW64_64KEY, key.Receive()) != ERROR_SUCCESS) {
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, kCryptography, 0, KEY_READ, key.Receive());
  }
  return ReadUuid(key, "MachineGuid");
}

std::string NewUuid() {
  UUID uuid;
  RPC_CSTR text = nullptr;
  if (UuidCreate(&uuid) != RPC_S_OK || UuidToStringA(&uuid, &text) != RPC_S_OK) return {};
  const std::string copy = reinterpret_cast<const char*>(text);
  RpcStringFreeA(&text);
  return copy;
}

// The machine's own identifier serves again after the settings were deleted; a new one only where there is none.
void SettleUuid(const std::string& stored) {
  app.uuid = stored;
  if (IsUuid(app.uuid)) return;
  app.uuid = MachineUuid();
  if (!IsUuid(app.uuid)) app.uuid = NewUuid();
  if (app.uuid.size() == kUuidLength) SaveUuid();
}

// A folder whose manifest copy would not fit a path can't be used either.
void SettleTmpPath(const std::wstring& stored) {
  const bool usable = IsDirectory(stored) && JoinPath(stored, kManifestName).size() <= kMaxPathLength;
  const std::wstring& path = usable ? stored : app.dataDir;
  app.tmpPath.Set(path);
  app.manifestPath = JoinPath(path, kManifestName);
}

constexpr wchar_t kGamesFolder[] = L"Games";

std::optional<std::wstring> GamesOnVolumeOf(const std::wstring& path) {
  wchar_t volume[MAX_PATH];
  if (!GetVolumePathNameW(path.c_str(), volume, ARRAYSIZE(volume))) return std::nullopt;
  return JoinPath(volume, kGamesFolder);
}

std::optional<std::wstring> ExistingGamesFolder() {
  // The roots one after the other, each with its terminator, and one terminator more.
  wchar_t roots[MAX_PATH] = {};
  const DWORD length = GetLogicalDriveStringsW(ARRAYSIZE(roots), roots);
  if (length >= ARRAYSIZE(roots)) return std::nullopt;
  for (const wchar_t* root = roots; *root; root += wcslen(root) + 1) {
    std::wstring folder = JoinPath(root, kGamesFolder);
    if (IsDirectory(folder)) return folder;
  }
  return std::nullopt;
}

// The first existing "Games" folder in the root of a drive, else "Games" on the volume of the application data; nothing
// changes when that volume can't be found.
void DefaultInstallPath() {
  auto folder = ExistingGamesFolder();
  if (!folder) folder = GamesOnVolumeOf(app.appDataPath);
  if (folder && folder->size() <= kMaxPathLength) app.installPath.Set(*folder);
}

void SettleInstallPath(const std::wstring& stored) {
  app.installPath.Set(stored);
  if (!IsDirectory(stored)) DefaultInstallPath();
}

}  // namespace

void LoadSettings() {
  RegKey key;
  RegOpenKeyExW(HKEY_CURRENT_USER, app.registryKeyPath.c_str(), 0, KEY_READ, key.Receive());
  SettleUuid(ReadUuid(key, kUuid));
  SettleTmpPath(ReadPath(key, kLastTmpPath));
  SettleInstallPath(ReadPath(key, kLastInstallPath));
  app.deleteTmpFiles = ReadNumber(key, kDeleteTmpFiles) == 1;
  SetSpeedLimit(ReadNumber(key, kMaxDownloadSpeed));
  app.uiLanguage = ResolveUiLanguage(ReadNumber(key, kLanguage));
}

void SetSpeedLimit(uint32_t kilobytesPerSecond) {
  constexpr uint64_t kMost = std::numeric_limits<uint32_t>::max();
  app.maxDownloadSpeedKB = kilobytesPerSecond;
  app.speedLimitBytes = static_cast<uint32_t>(std::min(uint64_t{kilobytesPerSecond} * 1024, kMost));
}

void SaveLanguage() { WriteNumber(kLanguage, app.uiLanguage); }
void SaveDeleteTmpFiles() { WriteNumber(kDeleteTmpFiles, app.deleteTmpFiles ? 1 : 0); }
void SaveMaxDownloadSpeed() { WriteNumber(kMaxDownloadSpeed, app.maxDownloadSpeedKB); }
void SaveLastInstallPath() { WritePath(kLastInstallPath, *app.installPath.Get()); }
void SaveLastTmpPath() { WritePath(kLastTmpPath, *app.tmpPath.Get()); }
