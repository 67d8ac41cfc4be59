#include "install/client_config_text.h"

#include <gtest/gtest.h>

namespace {

const ClientConfigValues kValues = {"NewPlayer7", "1280x1024x32", "C:\\Spiele\\\xC3\xA4\\screenshots", "en_US"};

}  // namespace

TEST(ClientConfigText, FillsOnlyTheFirstEmptyElementOfEachKind) {
  struct Case {
    const char *before, *after;
    int filled;
  };
  const Case cases[] = {
      {"<nick></nick>", "<nick>NewPlayer7</nick>", 1},
      {"<nick></nick>\n<nick></nick>", "<nick>NewPlayer7</nick>\n<nick></nick>", 1},
      {"<nick>Ann</nick><display_resolution></display_resolution>",
       "<nick>Ann</nick><display_resolution>1280x1024x32</display_resolution>", 1},
      {"<nick>Ann</nick><nick></nick>", "<nick>Ann</nick><nick>NewPlayer7</nick>", 1},
      {"<screenshot_path></screenshot_path><locale></locale>",
       "<screenshot_path>C:\\Spiele\\\xC3\xA4\\screenshots</screenshot_path><locale>en_US</locale>", 2},
      {"<nick/><nick> </nick><Nick></Nick>", "<nick/><nick> </nick><Nick></Nick>", 0},
      {"", "", 0},
  };
  for (const Case& c : cases) {
    std::string text = c.before;
    EXPECT_EQ(FillClientConfig(text, kValues), c.filled) << c.before;
    EXPECT_EQ(text, c.after);
  }
}

TEST(ClientConfigText, ALocaleThatIsNotThereStaysEmpty) {
  ClientConfigValues values = kValues;
  values.locale.clear();
  std::string text = "<locale></locale>";
  EXPECT_EQ(FillClientConfig(text, values), 0);
  EXPECT_EQ(text, "<locale></locale>");
}

TEST(ClientConfigText, LineEndsComeOutAsCrLfAndOtherBytesStay) {
  struct Case {
    std::string bytes, rewritten;
  };
  const Case cases[] = {
      {"a\nb\n", "a\r\nb\r\n"}, {"a\r\nb", "a\r\nb"}, {"a\rb", "a\rb"},
      {"a\r\r\nb", "a\r\r\nb"}, {"\r", "\r"},         {std::string("\x1A\0\xFF", 3), std::string("\x1A\0\xFF", 3)},
  };
  for (const Case& c : cases) EXPECT_EQ(ToTextFile(FromTextFile(c.bytes)), c.rewritten);
}
