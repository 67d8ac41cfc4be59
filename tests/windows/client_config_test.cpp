#include "install/client_config.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <regex>

#include "app/context.h"
#include "support/temp_folder.h"
#include "system/files.h"
#include "system/text.h"

// The client lies in a folder that no code page can name.
TEST(ClientConfig, FillsEmptyEntriesAndOnlyThose) {
  const TempFolder folder;
  const std::wstring client = folder / L"\u0416\u4E2D\u00E9", path = client + L"\\MTA\\config\\coreconfig.xml";
  const std::string target = WideToUtf8(client), locale = "<locale></locale>";
  // A folder to make, the language, whether the file is protected, its text before and after: the same is not written.
  const std::tuple<const wchar_t*, uint16_t, bool, std::string, std::string> cases[] = {
      {L"", LANG_ENGLISH, false, "\xFF\n<nick></nick>", "\xFF\r\n<nick>N</nick>"},
      {L"", LANG_ENGLISH, false, "<nick>Ann</nick><nick/>\n", "<nick>Ann</nick><nick/>\n"},
      {L"", LANG_ENGLISH, true, "<nick></nick>\n", "<nick></nick>\n"},
      {L"", LANG_ENGLISH, false, "<display_resolution></display_resolution><screenshot_path></screenshot_path>",
       "<display_resolution>0x0x32</display_resolution><screenshot_path>" + target + "\\screenshots</screenshot_path>"},
      {L"\\MTA\\locale\\en_US", LANG_RUSSIAN, false, locale, locale},
      {L"", LANG_GERMAN, false, locale, "<locale>en_US</locale>"},
      {L"\\MTA\\locale\\ru", LANG_RUSSIAN, false, locale, "<locale>ru</locale>"},
  };
  for (const auto& [madeFolder, language, isProtected, before, after] : cases) {
    EXPECT_EQ(CreateDirectories(client + madeFolder), 0u);
    WriteTestFile(path, before);
    std::filesystem::last_write_time(path, {});
    const auto old = std::filesystem::last_write_time(path);
    SetFileAttributesW(path.c_str(), isProtected ? FILE_ATTRIBUTE_READONLY : FILE_ATTRIBUTE_NORMAL);
    app.uiLanguage = language;
    EXPECT_FALSE(ApplyGameClientConfig(target, "mtasa_config2"));
    EXPECT_TRUE(ApplyGameClientConfig(target, "mtasa_config"));
    EXPECT_EQ(std::regex_replace(ReadTestFile(path), std::regex("NewPlayer(0|[1-9]\\d?\\d?)<"), "N<"), after);
    EXPECT_EQ(std::filesystem::last_write_time(path) == old, before == after) << before;
    EXPECT_FALSE(PathExists(path + L".new"));
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
  }
  app.uiLanguage = LANG_ENGLISH;
}
