#include "install/client_config.h"

#include <windows.h>

#include <cstdlib>
#include <ctime>

#include "core/context.h"
#include "install/client_config_text.h"
#include "system/files.h"
#include "system/text.h"

namespace {

std::string RandomNick() {
  std::srand(static_cast<unsigned>(std::time(nullptr)));
  return "NewPlayer" + std::to_string(std::rand() % 1000);
}

// The client's name for the UI language, where its files for that language are there; empty otherwise.
std::string AvailableLocale(const std::wstring& client) {
  const std::string locale = app.uiLanguage == LANG_RUSSIAN ? "ru" : "en_US";
  return IsDirectory(client + L"\\MTA\\locale\\" + WidenBytes(locale)) ? locale : "";
}

ClientConfigValues ChooseValues(const std::string& targetFolder) {
  ClientConfigValues values;
  values.nick = RandomNick();
  values.displayResolution = std::to_string(app.desktopWidth) + "x" + std::to_string(app.desktopHeight) + "x32";
  values.screenshotPath = targetFolder + "\\screenshots";
  values.locale = AvailableLocale(Utf8ToWide(targetFolder));
  return values;
}

}  // namespace

bool ApplyGameClientConfig(const std::string& targetFolder, const std::string& addon) {
  if (addon != "mtasa_config") return false;
  const std::wstring path = Utf8ToWide(targetFolder) + L"\\MTA\\config\\coreconfig.xml";
  const auto bytes = ReadWholeFile(path);
  if (!bytes || bytes->empty()) return false;
  std::string text = FromTextFile(*bytes);
  if (FillClientConfig(text, ChooseValues(targetFolder)) > 0) ReplaceFileContent(path, ToTextFile(text));
  return true;
}
