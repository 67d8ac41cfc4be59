// Conversions and small operations on text. Narrow text is bytes: UTF-8 where a function says so, otherwise
// bytes without a code page, which become wide characters one by one. No Windows header: also built natively.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// One wide character per byte (0x80..0xFF become U+0080..U+00FF); never fails.
std::wstring WidenBytes(std::string_view bytes);

// UTF-8 to wide text; each byte that is not part of a valid sequence becomes U+FFFD.
std::wstring Utf8ToWide(std::string_view utf8);

// Wide text to UTF-8; an unpaired surrogate becomes U+FFFD.
std::string WideToUtf8(std::wstring_view wide);

// Splits at every `separator`, keeping empty pieces, also the one after a final separator. An empty text gives
// no pieces.
std::vector<std::string> SplitKeepingEmpty(std::string_view text, char separator);

// The text on one line: "?" for each of its control characters.
std::wstring OneLine(std::wstring text);

// `part` of `whole` in percent, truncated and at most 4294967295; 0 when `whole` is 0.
uint32_t PercentOf(uint64_t part, uint64_t whole);

// Replaces the first occurrence of `from`; true when there was one.
bool ReplaceFirst(std::string& text, std::string_view from, std::string_view to);

// What reading and writing a file in text mode does to line ends: CR LF becomes LF, and LF becomes CR LF.
std::string FromTextFile(const std::string& bytes);
std::string ToTextFile(const std::string& text);
