#include "net/form_encoding.h"

#include <gtest/gtest.h>

TEST(FormEncoding, EncodesEveryByteThatIsNotPlain) {
  const std::string plain = "-_.!~*'()0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
  for (int value = 0; value < 256; ++value) {
    const char c = static_cast<char>(value);
    char expected[4] = {c};
    if (plain.find(c) == std::string::npos) snprintf(expected, sizeof expected, "%%%02x", static_cast<unsigned>(value));
    EXPECT_EQ(FormEncode({&c, 1}), c == ' ' ? "+" : expected);
  }
  EXPECT_EQ(FormEncodeUtf8(L"C:\\\u00E9 \u0416"), "C%3a%5c%c3%a9+%d0%96");
}
