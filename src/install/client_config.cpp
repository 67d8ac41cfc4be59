#include "install/client_config.h"

#include <windows.h>

#include <cstdlib>
#include <ctime>

#include "app/context.h"
#include "install/client_config_text.h"
#include "system/files.h"
#include "system/handles.h"
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

bool WriteNewFile(const std::wstring& path, const std::string& bytes) {
  const FileHandle file(
      CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  DWORD written = 0;
  return file && WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) &&
         written == bytes.size();
}

// An installer that runs elevated could replace even a file that may not be written.
bool MayBeWritten(const std::wstring& path) {
  constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
  const FileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
  return static_cast<bool>(file);
}

// The player's settings survive a full disk or a crash: the new text is complete before it takes the place of the old.
void ReplaceFileText(const std::wstring& path, const std::string& bytes) {
  if (!MayBeWritten(path)) return;
  const std::wstring newPath = path + L".new";
  if (WriteNewFile(newPath, bytes) && ReplaceFileW(path.c_str(), newPath.c_str(), nullptr, 0, nullptr, nullptr)) return;
  if (PathExists(path)) {
    DeleteFileW(newPath.c_str());
  } else {  // one failure has removed the old file already, and the new one is all there is
    MoveFileW(newPath.c_str(), path.c_str());
  }
}

}  // namespace

bool ApplyGameClientConfig(const std::string& targetFolder, const std::string& addon) {
  if (addon != "mtasa_config") return false;
  const std::wstring path = Utf8ToWide(targetFolder) + L"\\MTA\\config\\coreconfig.xml";
  const auto bytes = ReadWholeFile(path);
  if (!bytes || bytes->empty()) return false;
  std::string text = FromTextFile(*bytes);
  if (FillClientConfig(text, ChooseValues(targetFolder)) > 0) ReplaceFileText(path, ToTextFile(text));
  return true;
}
