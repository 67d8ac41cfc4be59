#include "install/client_config_text.h"

#include "system/text.h"

namespace {

// A folder may have an "&" in its name. What else XML gives a meaning can't be in one.
std::string XmlText(const std::string& value) {
  std::string text;
  for (const char c : value) text += c == '&' ? std::string("&amp;") : std::string(1, c);
  return text;
}

int FillElement(std::string& text, const std::string& name, const std::string& value) {
  const std::string open = "<" + name + ">", close = "</" + name + ">";
  return !value.empty() && ReplaceFirst(text, open + close, open + XmlText(value) + close) ? 1 : 0;
}

}  // namespace

int FillClientConfig(std::string& text, const ClientConfigValues& values) {
  return FillElement(text, "nick", values.nick) + FillElement(text, "display_resolution", values.displayResolution) +
         FillElement(text, "screenshot_path", values.screenshotPath) + FillElement(text, "locale", values.locale);
}
