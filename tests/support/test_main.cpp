#include <gtest/gtest.h>
#include <windows.h>

#include "app/context.h"
#include "app/localization.h"

// The state that start-up would have settled: English texts, and a settings key of the tests' own.
int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  app.instance = GetModuleHandleW(nullptr);
  app.userAgent = L"Zendora tests";
  app.registryKeyPath = L"SOFTWARE\\Zendora Installer Tests";
  SetThreadLanguage(LANG_ENGLISH);
  const int result = RUN_ALL_TESTS();
  RegDeleteTreeW(HKEY_CURRENT_USER, app.registryKeyPath.c_str());
  return result;
}
