#include "install/client_config.h"

#include <gtest/gtest.h>

#include "app/context.h"
#include "support/temp_folder.h"
#include "system/files.h"
#include "system/text.h"

// The client lies in a folder that no code page can name.
TEST(ClientConfig, FillsWhatThePlayerLeftEmpty) {
  const TempFolder folder;
  const std::wstring client = folder / L"\u0416\u4E2D\u00E9", path = client + L"\\MTA\\config\\coreconfig.xml";
  const std::string target = WideToUtf8(client), empty = "<locale></locale>\n<screenshot_path></screenshot_path>";
  CreateDirectories(client + L"\\MTA\\locale\\ru");
  WriteTestFile(path, empty);
  EXPECT_FALSE(ApplyGameClientConfig(target, "mtasa_config2"));
  SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
  EXPECT_TRUE(ApplyGameClientConfig(target, "mtasa_config"));
  EXPECT_EQ(ReadTestFile(path), empty) << "it is protected";
  SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
  app.uiLanguage = LANG_RUSSIAN;
  EXPECT_TRUE(ApplyGameClientConfig(target, "mtasa_config"));
  EXPECT_EQ(ReadTestFile(path),
            "<locale>ru</locale>\r\n<screenshot_path>" + target + "\\screenshots</screenshot_path>");
}
