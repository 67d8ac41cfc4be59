#include "ascii.h"

#include <algorithm>

namespace {

template <typename Predicate>
bool IsAll(std::string_view text, Predicate predicate) {
  return !text.empty() && std::all_of(text.begin(), text.end(), predicate);
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

std::string LowerAscii(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return lower;
}

bool IsAscii(std::string_view text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool IsDecimal(std::string_view text) { return IsAll(text, IsDigit); }

bool IsLowerHex(std::string_view text) {
  return IsAll(text, [](char c) { return IsDigit(c) || (c >= 'a' && c <= 'f'); });
}

std::string XmlEscaped(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}
