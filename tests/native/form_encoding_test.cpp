#include "net/form_encoding.h"

#include <gtest/gtest.h>

TEST(FormEncoding, EncodesEveryByteThatIsNotPlain) {
  const std::string plain = "-_.!~*'()";
  for (int value = 0; value < 256; ++value) {
    const char c = static_cast<char>(value);
    const bool letter = (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    char expected[4];
    snprintf(expected, sizeof expected, "%%%02x", static_cast<unsigned>(value));
    if (letter || plain.find(c) != std::string::npos) {
      EXPECT_EQ(FormEncode({&c, 1}), std::string(1, c));
    } else {
      EXPECT_EQ(FormEncode({&c, 1}), c == ' ' ? "+" : expected);
    }
  }
}

TEST(FormEncoding, EncodesTexts) {
  EXPECT_EQ(FormEncode(""), "");
  EXPECT_EQ(FormEncode("{gtasa, mtasa.exe}"), "%7bgtasa%2c+mtasa.exe%7d");
  EXPECT_EQ(FormEncode("100% & more=+"), "100%25+%26+more%3d%2b");
  EXPECT_EQ(FormEncodeUtf8(L"C:\\Games\\GTA San Andreas"), "C%3a%5cGames%5cGTA+San+Andreas");
  EXPECT_EQ(FormEncodeUtf8(L"\u00E9 \u0416"), "%c3%a9+%d0%96");
}
