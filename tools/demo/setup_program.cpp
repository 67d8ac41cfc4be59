// The installer program of the demo site. It stands in for a game's own setup: it writes the game's files into the
// folder that it is given, and its registry entries.
//   mtasa.exe FOLDER          installs into the folder
//   mtasa.exe /note FILE      only writes a file, to show that it was started
//   mtasa.exe /hold FILE      makes a file and keeps it open until it is ended
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <string>

namespace {

bool WriteText(const std::filesystem::path& path, const std::string& text) {
  std::error_code ignored;
  std::filesystem::create_directories(path.parent_path(), ignored);
  std::ofstream file(path, std::ios::binary);
  file << text;
  return static_cast<bool>(file.flush());
}

bool WriteRegistryText(const wchar_t* key, const wchar_t* name, const std::wstring& text) {
  HKEY handle = nullptr;
  if (RegCreateKeyExW(HKEY_LOCAL_MACHINE, key, 0, nullptr, 0, KEY_WRITE | KEY_WOW64_32KEY, nullptr, &handle, nullptr)) {
    return false;
  }
  const auto bytes = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
  const LSTATUS error = RegSetValueExW(handle, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()), bytes);
  RegCloseKey(handle);
  return error == ERROR_SUCCESS;
}

bool InstallInto(const std::filesystem::path& folder) {
  const std::filesystem::path program = folder / L"Multi Theft Auto.exe";
  const wchar_t* const key = L"SOFTWARE\\Multi Theft Auto: San Andreas All\\1.6";
  std::error_code ignored;
  std::filesystem::create_directories(folder / L"MTA" / L"locale" / L"en_US", ignored);
  return WriteText(program, "A stand-in for the client's program.\n") &&
         WriteText(
             folder / L"MTA" / L"config" / L"coreconfig.xml",
             "<mainconfig>\r\n  <settings>\r\n    <nick></nick>\r\n    <display_resolution></display_resolution>\r\n"
             "    <screenshot_path></screenshot_path>\r\n    <locale></locale>\r\n  "
             "</settings>\r\n</mainconfig>\r\n") &&
         WriteRegistryText(key, L"Last Run Location", folder.wstring()) &&
         WriteRegistryText(key, L"Last Run Path", program.wstring());
}

int HoldFile(const std::wstring& path) {
  const HANDLE file =
      CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return 1;
  Sleep(INFINITE);
  CloseHandle(file);
  return 0;
}

}  // namespace

// The command line is read as one path, so that a folder with blanks needs no quotation marks.
int WINAPI wWinMain(HINSTANCE, HINSTANCE, wchar_t* commandLine, int) {
  std::wstring arguments = commandLine;
  const std::wstring note = L"/note ", hold = L"/hold ";
  if (arguments.rfind(note, 0) == 0) return WriteText(arguments.substr(note.size()), "started\n") ? 0 : 1;
  if (arguments.rfind(hold, 0) == 0) return HoldFile(arguments.substr(hold.size()));
  if (arguments.empty()) return 1;
  return InstallInto(arguments) ? 0 : 1;
}
