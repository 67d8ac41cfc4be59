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
  const std::string target = WideToUtf8(client), locale = "<locale></locale>\r\n";
  struct Case {
    uint16_t language;
    bool readOnly;
    std::string before, after;  // the same: not written
  };
  const Case cases[] = {
      {LANG_ENGLISH, false, "<a>\xFF</a>\n<nick></nick>", "<a>\xFF</a>\r\n<nick>N</nick>"},
      {LANG_ENGLISH, false, "<nick>Ann</nick><nick/>\n", "<nick>Ann</nick><nick/>\n"},
      {LANG_ENGLISH, true, "<nick></nick>\n", "<nick></nick>\n"},
      {LANG_ENGLISH, false, "<display_resolution></display_resolution><screenshot_path></screenshot_path>",
       "<display_resolution>0x7x32</display_resolution><screenshot_path>" + target + "\\screenshots</screenshot_path>"},
      {LANG_RUSSIAN, false, locale, locale},
      {LANG_GERMAN, false, locale, "<locale>en_US</locale>\r\n"},
  };
  EXPECT_EQ(CreateDirectories(client + L"\\MTA\\locale\\en_US"), 0u);
  app.desktopHeight = 7;
  const auto old = std::filesystem::file_time_type::clock::now() - std::chrono::hours(99);
  for (const Case& c : cases) {
    WriteTestFile(path, c.before);
    std::filesystem::last_write_time(path, old);
    const auto written = std::filesystem::last_write_time(path);
    SetFileAttributesW(path.c_str(), c.readOnly ? FILE_ATTRIBUTE_READONLY : FILE_ATTRIBUTE_NORMAL);
    app.uiLanguage = c.language;
    EXPECT_FALSE(ApplyGameClientConfig(target, "mtasa_config2"));
    EXPECT_TRUE(ApplyGameClientConfig(target, "mtasa_config"));
    EXPECT_EQ(std::regex_replace(ReadTestFile(path), std::regex("NewPlayer(0|[1-9]\\d?\\d?)<"), "N<"), c.after);
    EXPECT_EQ(std::filesystem::last_write_time(path) == written, c.before == c.after) << c.before;
    EXPECT_FALSE(PathExists(path + L".new"));
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
  }
  EXPECT_EQ(CreateDirectories(client + L"\\MTA\\locale\\ru"), 0u);
  WriteTestFile(path, "<locale></locale>");
  app.uiLanguage = LANG_RUSSIAN;
  EXPECT_TRUE(ApplyGameClientConfig(target, "mtasa_config"));
  EXPECT_EQ(ReadTestFile(path), "<locale>ru</locale>");
  WriteTestFile(path, "");
  EXPECT_FALSE(ApplyGameClientConfig(target, "mtasa_config"));
  app.uiLanguage = LANG_ENGLISH;
  app.desktopHeight = 0;
}
