#include "install/registry_items.h"

#include <windows.h>

#include "install/package_texts.h"
#include "system/handles.h"

namespace {

HKEY RootKey(RegistryRoot root) {
  switch (root) {
    case RegistryRoot::LocalMachine:
      return HKEY_LOCAL_MACHINE;
    case RegistryRoot::CurrentUser:
      return HKEY_CURRENT_USER;
    case RegistryRoot::ClassesRoot:
      return HKEY_CLASSES_ROOT;
    case RegistryRoot::CurrentConfig:
      return HKEY_CURRENT_CONFIG;
    case RegistryRoot::Users:
      return HKEY_USERS;
  }
  return HKEY_LOCAL_MACHINE;
}

// Creates or opens the key in the 32-bit view, where the 32-bit games look; null when that is refused. A path without a
// subkey names a root key as a whole, in which no package has any business.
RegKey CreateRegistryKey(const std::string& keyPath) {
  const RegistryKeyPath path = ParseRegistryKeyPath(keyPath);
  RegKey key;
  if (path.subkey.empty()) return key;
  RegCreateKeyExA(RootKey(path.root), path.subkey.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                  KEY_WRITE | KEY_WOW64_32KEY, nullptr, key.Receive(), nullptr);
  return key;
}

// An empty name is the key's default value.
bool SetRegistryValue(HKEY key, const std::string& name, const std::string& data) {
  if (const auto number = ParseRegistryNumber(data)) {
    return RegSetKeyValueA(key, nullptr, name.c_str(), REG_DWORD, &*number, sizeof *number) == ERROR_SUCCESS;
  }
  return RegSetKeyValueA(key, nullptr, name.c_str(), REG_SZ, data.c_str(), static_cast<DWORD>(data.size() + 1)) ==
         ERROR_SUCCESS;
}

}  // namespace

RegistryCounts ApplyRegistryItems(const Package& package, RegistryPhase phase, const std::string& targetFolder) {
  RegistryCounts counts;
  for (const RegistryItem& item : package.registryItems) {
    if (item.phase != phase) continue;
    const RegKey key = CreateRegistryKey(item.keyPath);
    if (!key) continue;
    for (const auto& [name, data] : item.values) {
      ++counts.attempted;
      if (SetRegistryValue(key.Get(), name, ExpandInstallPath(data, targetFolder))) ++counts.succeeded;
    }
  }
  return counts;
}
