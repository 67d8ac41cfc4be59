#include "install/client_config.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "support/replaced_import.h"
#include "support/temp_folder.h"
#include "system/text.h"

extern "C" decltype(&ReplaceFileW) importedReplaceFile __asm__("__imp__ReplaceFileW@24");

static BOOL WINAPI LoseOldFile(const wchar_t* old, const wchar_t*, const wchar_t*, DWORD, void*, void*) {
  DeleteFileW(old);
  return FALSE;
}

TEST(ClientConfig, SurvivesAReplacementThatLostTheOldFile) {
  const TempFolder folder;
  const std::wstring path = folder / L"MTA\\config\\coreconfig.xml";
  WriteTestFile(path, "<nick></nick>");
  const ReplacedImport replace(importedReplaceFile, LoseOldFile);
  EXPECT_TRUE(ApplyGameClientConfig(WideToUtf8(folder.Path()), "mtasa_config"));
  EXPECT_TRUE(ReadTestFile(path).starts_with("<nick>NewPlayer"));
}
