// Conversions that every text of a manifest goes through.
#include <algorithm>

#include "fuzz/fuzzing.h"
#include "net/telemetry_reports.h"
#include "system/text.h"

namespace {

std::string FormDecoded(const std::string& text) {
  std::string bytes;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '%') {
      bytes += static_cast<char>(std::stoi(text.substr(i + 1, 2), nullptr, 16));
      i += 2;
    } else {
      bytes += text[i] == '+' ? ' ' : text[i];
    }
  }
  return bytes;
}

bool IsOneLine(const std::wstring& text) {
  return std::ranges::none_of(text, [](wchar_t c) { return c < L' '; });
}

}  // namespace

void FuzzOne(const std::string& input) {
  const std::wstring wide = Utf8ToWide(input), bytes = WidenBytes(input);
  Require(bytes.size() == input.size(), "one character for each byte");
  Require(wide.size() <= input.size(), "no more characters than bytes");
  Require(Utf8ToWide(WideToUtf8(wide)) == wide, "what could be read can be written");
  for (const std::wstring& text : {wide, bytes}) {
    const std::wstring line = OneLine(text);
    Require(IsOneLine(line) && line.size() == text.size(), "no line of the log breaks");
  }

  Require(FromTextFile(ToTextFile(input)) == input, "a text comes back from its file");
  const std::string encoded = FormEncode(input);
  Require(encoded.find_first_of("&=\r\n ") == std::string::npos, "a value ends nowhere before its end");
  Require(FormDecoded(encoded) == input, "an encoded value is the value");
}
