#include "net/form_encoding.h"

#include "system/text.h"

namespace {

constexpr std::string_view kUnchanged =
    "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
    "-_.!~*'()";

}  // namespace

std::string FormEncode(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string encoded;
  for (const char c : bytes) {
    if (kUnchanged.find(c) != std::string_view::npos) {
      encoded += c;
    } else if (c == ' ') {
      encoded += '+';
    } else {
      const auto byte = static_cast<unsigned char>(c);
      encoded += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
  }
  return encoded;
}

std::string FormEncodeUtf8(std::wstring_view text) { return FormEncode(WideToUtf8(text)); }
