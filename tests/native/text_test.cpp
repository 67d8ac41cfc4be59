#include "system/text.h"

#include <gtest/gtest.h>

TEST(Text, Utf8RoundTripAndGarbage) {
  const std::pair<std::string, std::wstring> garbage[] = {
      {"\x80", L"\uFFFD"},                                // a continuation byte alone
      {"\xC0\xAF", L"\uFFFD\uFFFD"},                      // an overlong slash must not become one
      {"\xED\xA0\x80", L"\uFFFD\uFFFD\uFFFD"},            // a surrogate
      {"\xF4\x90\x80\x80", L"\uFFFD\uFFFD\uFFFD\uFFFD"},  // beyond Unicode
      {"a\xE2\x82z\xC3", L"a\uFFFD\uFFFDz\uFFFD"},        // cut off
  };
  for (const auto& [utf8, wide] : garbage) EXPECT_EQ(Utf8ToWide(utf8), wide);
  EXPECT_EQ(WideToUtf8(std::wstring(1, static_cast<wchar_t>(0xD800))), "\xEF\xBF\xBD");
  EXPECT_EQ(Utf8ToWide("gta \xC3\xA9\xD0\x96\xE2\x82\xAC"), L"gta \u00E9\u0416\u20AC");
  EXPECT_EQ(WideToUtf8(Utf8ToWide("a\xF0\x9F\x98\x80\xD0\x96\xE2\x82\xAC")), "a\xF0\x9F\x98\x80\xD0\x96\xE2\x82\xAC");
  EXPECT_EQ(WidenBytes("a\x80\xFF"), (std::wstring{L'a', 0x80, 0xFF}));
}
