#include "install/client_config_text.h"

#include <gtest/gtest.h>

#include "system/text.h"

TEST(ClientConfigText, FillsOnlyTheFirstEmptyElementOfEachKind) {
  const std::string before =
      "<nick>Ann</nick><nick></nick>\n<nick></nick><screenshot_path/><screenshot_path> </screenshot_path>"
      "<Display_resolution></Display_resolution><locale></locale>";
  std::string text = before;
  EXPECT_EQ(FillClientConfig(text, {"", "1x1x32", "C:\\a", ""}), 0)
      << "nothing is empty, or there is nothing to fill in";
  EXPECT_EQ(text, before);
  EXPECT_EQ(FillClientConfig(text, {"New7", "1x1x32", "C:\\a", "r&u"}), 2);
  EXPECT_TRUE(text.starts_with("<nick>Ann</nick><nick>New7</nick>\n<nick></nick>"));
  EXPECT_TRUE(text.ends_with("<locale>r&amp;u</locale>"));
  EXPECT_EQ(ToTextFile(FromTextFile("a\nb\r\nc\r\xFF\r\r\n\x1A\r")), "a\r\nb\r\nc\r\xFF\r\r\n\x1A\r");
}
