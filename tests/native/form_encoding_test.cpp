#include "net/telemetry_reports.h"

#include <gtest/gtest.h>

TEST(FormEncoding, EncodesEveryByteThatIsNotPlain) {
  const std::string plain = "-_.!~*'()0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
  EXPECT_EQ(FormEncode(plain), plain);
  EXPECT_EQ(FormEncode("\"#$%&+,/:;<=>?@[\\]^`{|}"),
            "%22%23%24%25%26%2b%2c%2f%3a%3b%3c%3d%3e%3f%40%5b%5c%5d%5e%60%7b%7c%7d");
  EXPECT_EQ(FormEncode({"\0\t\x7F\xFF ", 5}), "%00%09%7f%ff+");
  EXPECT_EQ(FormEncodeUtf8(L"C:\\\u00E9 \u0416"), "C%3a%5c%c3%a9+%d0%96");
}
