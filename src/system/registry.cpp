#include "system/registry.h"

#include "system/path_names.h"

RegKey OpenMachineKey32(const wchar_t* path) {
  RegKey key;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_READ | KEY_WOW64_32KEY, key.Receive()) == ERROR_SUCCESS)
    return key;
  RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_READ, key.Receive());
  return key;
}

std::optional<std::wstring> ReadRegistryText(HKEY key, const wchar_t* subkey, const wchar_t* value) {
  wchar_t text[kMaxPathLength + 1];
  DWORD size = sizeof text;
  if (RegGetValueW(key, subkey, value, RRF_RT_REG_SZ, nullptr, text, &size) != ERROR_SUCCESS) return std::nullopt;
  return text;
}
