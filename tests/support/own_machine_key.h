// A registry of the machine that a test fills by itself.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "system/handles.h"

// HKEY_LOCAL_MACHINE is an empty key of the tests' own while this lives. MD5 can't be had meanwhile.
class OwnMachineKey {
 public:
  OwnMachineKey() {
    RegCreateKeyW(HKEY_CURRENT_USER, kPath, key_.Receive());
    EXPECT_EQ(RegOverridePredefKey(HKEY_LOCAL_MACHINE, key_.Get()), ERROR_SUCCESS);
  }
  ~OwnMachineKey() {
    RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    RegDeleteTreeW(HKEY_CURRENT_USER, kPath);
  }

  void SetText(const std::wstring& path, const wchar_t* value, const std::wstring& text) const {
    const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
    EXPECT_EQ(RegSetKeyValueW(key_.Get(), path.c_str(), value, REG_SZ, text.c_str(), size), ERROR_SUCCESS);
  }

 private:
  static constexpr wchar_t kPath[] = L"SOFTWARE\\Zendora Installer Tests\\machine";
  RegKey key_;
};
