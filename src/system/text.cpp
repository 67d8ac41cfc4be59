#include "system/text.h"

#include <algorithm>

namespace {

constexpr char32_t kReplacement = 0xFFFD;

// Takes one character off the front of `utf8`: a valid sequence whole, anything else a byte at a time.
char32_t TakeUtf8Character(std::string_view& utf8) {
  const auto first = static_cast<unsigned char>(utf8[0]);
  const size_t length = first < 0x80 ? 1 : first >> 5 == 0x6 ? 2 : first >> 4 == 0xE ? 3 : first >> 3 == 0x1E ? 4 : 0;
  char32_t character = length < 2 ? first : first & (0x7Fu >> length);
  bool valid = length != 0 && length <= utf8.size();
  for (size_t i = 1; valid && i < length; ++i) {
    const auto next = static_cast<unsigned char>(utf8[i]);
    valid = (next & 0xC0) == 0x80;
    character = character << 6 | (next & 0x3Fu);
  }
  constexpr char32_t kSmallestOfLength[] = {0, 0, 0x80, 0x800, 0x10000};
  valid = valid && character >= kSmallestOfLength[length] && character <= 0x10FFFF &&
          (character < 0xD800 || character > 0xDFFF);
  utf8.remove_prefix(valid ? length : 1);
  return valid ? character : kReplacement;
}

void AppendWide(std::wstring& wide, char32_t character) {
  if (sizeof(wchar_t) == 2 && character > 0xFFFF) {
    character -= 0x10000;
    wide += static_cast<wchar_t>(0xD800 + (character >> 10));
    character = 0xDC00 + (character & 0x3FF);
  }
  wide += static_cast<wchar_t>(character);
}

bool IsHighSurrogate(wchar_t c) { return c >= 0xD800 && c <= 0xDBFF; }
bool IsLowSurrogate(wchar_t c) { return c >= 0xDC00 && c <= 0xDFFF; }

// Takes one character off the front of `wide`, joining a surrogate pair.
char32_t TakeWideCharacter(std::wstring_view& wide) {
  const wchar_t first = wide[0];
  const bool pair = IsHighSurrogate(first) && wide.size() > 1 && IsLowSurrogate(wide[1]);
  char32_t character = static_cast<char32_t>(first);
  if (pair) {
    character = 0x10000 + ((character - 0xD800) << 10) + (static_cast<char32_t>(wide[1]) - 0xDC00);
  } else if (IsHighSurrogate(first) || IsLowSurrogate(first)) {
    character = kReplacement;
  }
  wide.remove_prefix(pair ? 2 : 1);
  return character;
}

void AppendUtf8(std::string& utf8, char32_t character) {
  if (character < 0x80) {
    utf8 += static_cast<char>(character);
    return;
  }
  const int following = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
  constexpr unsigned kLeadBits[] = {0, 0xC0, 0xE0, 0xF0};
  utf8 += static_cast<char>(kLeadBits[following] | character >> (6 * following));
  for (int i = following - 1; i >= 0; --i) utf8 += static_cast<char>(0x80 | (character >> (6 * i) & 0x3F));
}

}  // namespace

std::wstring WidenBytes(std::string_view bytes) {
  std::wstring wide;
  wide.reserve(bytes.size());
  for (const char byte : bytes) wide += static_cast<wchar_t>(static_cast<unsigned char>(byte));
  return wide;
}

std::wstring Utf8ToWide(std::string_view utf8) {
  std::wstring wide;
  wide.reserve(utf8.size());
  while (!utf8.empty()) AppendWide(wide, TakeUtf8Character(utf8));
  return wide;
}

std::string WideToUtf8(std::wstring_view wide) {
  std::string utf8;
  utf8.reserve(wide.size());
  while (!wide.empty()) AppendUtf8(utf8, TakeWideCharacter(wide));
  return utf8;
}

std::vector<std::string> SplitKeepingEmpty(std::string_view text, char separator) {
  std::vector<std::string> pieces;
  if (text.empty()) return pieces;
  size_t end;
  while ((end = text.find(separator)) != std::string_view::npos) {
    pieces.emplace_back(text.substr(0, end));
    text.remove_prefix(end + 1);
  }
  pieces.emplace_back(text);
  return pieces;
}

bool ReplaceFirst(std::string& text, std::string_view from, std::string_view to) {
  const size_t position = text.find(from);
  if (position == std::string::npos) return false;
  text.replace(position, from.size(), to);
  return true;
}

std::string FromTextFile(const std::string& bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (size_t i = 0; i < bytes.size(); ++i) {
    const bool lineEnd = bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n';
    if (!lineEnd) text += bytes[i];
  }
  return text;
}

std::string ToTextFile(const std::string& text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (const char c : text) {
    if (c == '\n') bytes += '\r';
    bytes += c;
  }
  return bytes;
}

uint32_t PercentOf(uint64_t part, uint64_t whole) {
  if (whole == 0) return 0;
  const double percent = static_cast<double>(part) * 100.0 / static_cast<double>(whole);
  return percent < UINT32_MAX ? static_cast<uint32_t>(percent) : UINT32_MAX;
}

std::wstring OneLine(std::wstring text) {
  std::replace_if(
      text.begin(), text.end(), [](wchar_t c) { return c < L' '; }, L'?');
  return text;
}
