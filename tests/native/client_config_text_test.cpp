#include "install/client_config_text.h"

#include <gtest/gtest.h>

TEST(ClientConfigText, FillsOnlyTheFirstEmptyElementOfEachKind) {
  struct Case {
    const char *before, *after;
    int filled;
  };
  const Case cases[] = {
      {"<nick></nick>\n<nick></nick>", "<nick>NewPlayer7</nick>\n<nick></nick>", 1},
      {"<nick>Ann</nick><nick></nick>", "<nick>Ann</nick><nick>NewPlayer7</nick>", 1},
      {"<screenshot_path></screenshot_path><display_resolution></display_resolution>",
       "<screenshot_path>C:\\\xC3\xA4</screenshot_path><display_resolution>1280x1024x32</display_resolution>", 2},
      {"<nick/><nick> </nick><Nick></Nick>", "<nick/><nick> </nick><Nick></Nick>", 0},
      {"<locale></locale>", "<locale>en_US</locale>", 1},
  };
  ClientConfigValues values = {"NewPlayer7", "1280x1024x32", "C:\\\xC3\xA4", "en_US"};
  for (const Case& c : cases) {
    std::string text = c.before;
    EXPECT_EQ(FillClientConfig(text, values), c.filled) << c.before;
    EXPECT_EQ(text, c.after);
  }
  values.locale.clear();
  std::string text = "<locale></locale>";
  EXPECT_EQ(FillClientConfig(text, values), 0) << "there is nothing to fill in";
}

TEST(ClientConfigText, LineEndsComeOutAsCrLfAndOtherBytesStay) {
  const std::pair<std::string, std::string> cases[] = {{"a\nb\r\nc\n", "a\r\nb\r\nc\r\n"},
                                                       {"a\rb\r\r\n\r", "a\rb\r\r\n\r"},
                                                       {std::string("\x1A\0\xFF", 3), std::string("\x1A\0\xFF", 3)}};
  for (const auto& [bytes, rewritten] : cases) EXPECT_EQ(ToTextFile(FromTextFile(bytes)), rewritten);
}
