#include "install/client_config_text.h"

#include <gtest/gtest.h>

TEST(ClientConfigText, FillsOnlyTheFirstEmptyElementOfEachKind) {
  const struct {
    const char *before, *after;
    int filled;
  } cases[] = {
      {"<nick>Ann</nick><nick></nick>\n<nick></nick>", "<nick>Ann</nick><nick>New7</nick>\n<nick></nick>", 1},
      {"<screenshot_path></screenshot_path><display_resolution></display_resolution>",
       "<screenshot_path>C:\\a</screenshot_path><display_resolution>1280x1024x32</display_resolution>", 2},
      {"<nick/><nick> </nick><Nick></Nick>", "<nick/><nick> </nick><Nick></Nick>", 0},
      {"<locale></locale>", "<locale></locale>", 0},  // there is nothing to fill in
  };
  for (const auto& [before, after, filled] : cases) {
    std::string text = before;
    EXPECT_EQ(FillClientConfig(text, {"New7", "1280x1024x32", "C:\\a", ""}), filled) << before;
    EXPECT_EQ(text, after);
  }
}

TEST(ClientConfigText, LineEndsComeOutAsCrLfAndOtherBytesStay) {
  EXPECT_EQ(ToTextFile(FromTextFile("a\nb\r\nc\r\xFF\r\r\n\x1A\r")), "a\r\nb\r\nc\r\xFF\r\r\n\x1A\r");
}
