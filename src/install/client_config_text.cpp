#include "install/client_config_text.h"

#include "system/text.h"

namespace {

int FillElement(std::string& text, const std::string& name, const std::string& value) {
  const std::string open = "<" + name + ">", close = "</" + name + ">";
  return !value.empty() && ReplaceFirst(text, open + close, open + value + close) ? 1 : 0;
}

}  // namespace

int FillClientConfig(std::string& text, const ClientConfigValues& values) {
  return FillElement(text, "nick", values.nick) + FillElement(text, "display_resolution", values.displayResolution) +
         FillElement(text, "screenshot_path", values.screenshotPath) + FillElement(text, "locale", values.locale);
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
