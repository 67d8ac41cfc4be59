// The game client's configuration, whatever has become of it, and a folder of any name.
#include "install/client_config_text.h"

#include <tinyxml2.h>

#include "fuzz/fuzzing.h"
#include "system/text.h"

namespace {

// As Windows allows them.
std::string FolderName(std::string text) {
  std::erase_if(text, [](char c) {
    return static_cast<unsigned char>(c) < ' ' || std::string_view("<>\"|?*").find(c) != std::string_view::npos;
  });
  return text;
}

bool IsWellFormed(const std::string& text) {
  tinyxml2::XMLDocument document;
  return document.Parse(text.data(), text.size()) == tinyxml2::XML_SUCCESS;
}

void RequireReadBack(const ClientConfigValues& values) {
  std::string text = "<mainconfig><screenshot_path></screenshot_path></mainconfig>";
  Require(FillClientConfig(text, values) == 1, "an empty element is filled");
  tinyxml2::XMLDocument document;
  document.Parse(text.data(), text.size());
  Require(!document.Error(), "a filled configuration can be read");
  const char* read = document.RootElement()->FirstChildElement()->GetText();
  Require(read && read == values.screenshotPath, "the client reads the folder's name");
}

}  // namespace

void FuzzOne(const std::string& input) {
  std::string_view rest = input;
  const std::string folder = FolderName("C:\\" + TakeLine(rest) + "\\screenshots");
  const std::string before = FromTextFile(std::string(rest));
  const ClientConfigValues values = {"NewPlayer7", "1024x768x32", folder, "ru"};
  RequireReadBack(values);

  std::string after = before;
  const int filled = FillClientConfig(after, values);
  Require(filled >= 0 && filled <= 4, "there are four elements");
  Require((filled == 0) == (after == before), "only what is filled changes the text");
  if (IsWellFormed(before)) Require(IsWellFormed(after), "a configuration that could be read still can be");
}
