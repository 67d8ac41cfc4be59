// Attends a running installer for tools/fault-matrix: one step a line of standard input, one line of standard output
// for each. Parts of a line are separated by tabs; a line end inside one is the two characters "\n".
//   set NAME FOLDER           stores a setting of the program
//   start PROGRAM ARGUMENTS   starts it and attends it from now on: "ok"
//   adopt PROGRAM             attends the one with this program file that has a window: "ok", or "none"
//   watch MILLISECONDS        what asks for a person now, or else what can be seen after that time:
//                               exited CODE AGO (milliseconds) | box CAPTION TEXT | ended finished|cancelled | PAGE
//   answer yes|no|ok          presses a button of the box, and waits until the box is gone
//   close                     asks the window to close: "ok", or "none" without a window
//   log                       the lines of the log
//   kill                      ends the process by force; all that bear the name of the program
//   hold PATH                 opens a file so that nobody else can: "ok" or the error
//   release                   closes it
#include <windows.h>
// Needs windows.h before it.
#include <tlhelp32.h>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <string>
#include <vector>

#include "support/installer_window.h"
#include "system/files.h"
#include "system/handles.h"
#include "system/path_names.h"
#include "system/text.h"

namespace {

using Parts = std::vector<std::wstring>;

constexpr wchar_t kSettingsKey[] = L"SOFTWARE\\Zendora Installer";

struct Attended {
  KernelHandle process;
  DWORD id = 0;
  std::wstring programName;
};
Attended attended;
FileHandle heldFile;

std::wstring Joined(const std::vector<std::wstring>& lines) {
  std::wstring text;
  for (const std::wstring& line : lines) text += line + L"\n";
  return text;
}

std::wstring OnOneLine(std::wstring_view text) {
  std::wstring line;
  for (const wchar_t c : text) {
    if (c == L'\n') {
      line += L"\\n";
    } else if (c >= L' ') {
      line += c;
    }
  }
  return line;
}

std::wstring Start(const std::wstring& program, const std::wstring& arguments) {
  std::wstring commandLine = L"\"" + program + L"\" " + arguments;
  STARTUPINFOW startup{};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION started{};
  if (!CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                      &started)) {
    return L"error " + std::to_wstring(GetLastError());
  }
  CloseHandle(started.hThread);
  attended = {KernelHandle(started.hProcess), started.dwProcessId, std::wstring(LastComponent(program))};
  return L"ok";
}

std::wstring Adopt(const std::wstring& program) {
  DWORD id = 0;
  GetWindowThreadProcessId(FindInstallerWindow(), &id);
  KernelHandle process(OpenProcess(PROCESS_ALL_ACCESS, FALSE, id));
  if (id == 0 || !process) return L"none";
  attended = {std::move(process), id, std::wstring(LastComponent(program))};
  return L"ok";
}

// The dialog of a self-update has nothing to press, and asks for nobody.
InstallerBox OpenBox() {
  InstallerBox box = FindBox(attended.id);
  for (const int button : {IDOK, IDCANCEL, IDYES, IDNO}) {
    if (GetDlgItem(box.window, button)) return box;
  }
  return {};
}

std::wstring PageName(HWND window) {
  switch (PageOf(window)) {
    case ComponentsPage:
      return IsWindowEnabled(BottomButton(window)) ? L"list" : L"components";
    case InstallPage:
      return L"install";
    case ClosingPage:
      return L"closing";
    case NoPage:
      break;
  }
  return L"none";
}

// The last thing that an installation does is to rename its button.
bool HasEnded(HWND window) { return PageOf(window) == InstallPage && ShownText(BottomButton(window)) == L"Exit"; }

uint64_t Number(FILETIME time) { return uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime; }

// A window that is asked while its process ends answers when the time for that is up: the end may be a while ago.
std::wstring Exited() {
  DWORD code = 0;
  GetExitCodeProcess(attended.process.Get(), &code);
  FILETIME begin{}, end{}, kernel{}, user{}, now{};
  GetProcessTimes(attended.process.Get(), &begin, &end, &kernel, &user);
  GetSystemTimeAsFileTime(&now);
  const uint64_t ago = (Number(now) - Number(end)) / 10'000;
  return L"exited\t" + std::to_wstring(code) + L"\t" + std::to_wstring(ago);
}

// Empty while nothing asks for a person.
std::wstring Event() {
  if (WaitForSingleObject(attended.process.Get(), 0) != WAIT_TIMEOUT) return Exited();
  if (const InstallerBox box = OpenBox(); box.window) {
    return L"box\t" + OnOneLine(box.caption) + L"\t" + OnOneLine(box.text);
  }
  const HWND window = FindInstallerWindow(attended.id);
  if (!HasEnded(window)) return {};
  return LogHas(window, L"Installation finished") ? L"ended\tfinished" : L"ended\tcancelled";
}

std::wstring Watch(int milliseconds) {
  const std::wstring event = Event();
  if (!event.empty()) return event;
  Sleep(static_cast<DWORD>(milliseconds));  // each look asks Wine for every window there is
  return PageName(FindInstallerWindow(attended.id));
}

std::wstring Answer(const std::wstring& word) {
  const InstallerBox box = OpenBox();
  AnswerBox(box, word == L"yes" ? IDYES : word == L"no" ? IDNO : IDOK);
  const bool gone = WaitUntil([&box] { return !IsWindow(box.window); }, std::chrono::seconds(5));
  return gone ? L"ok" : L"it stays";
}

std::wstring Close() {
  const HWND window = FindInstallerWindow(attended.id);
  return window && PostMessageW(window, WM_CLOSE, 0, 0) ? L"ok" : L"none";
}

// One may start another meanwhile.
bool KillOne() {
  const FileHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
  PROCESSENTRY32W entry{};
  entry.dwSize = sizeof entry;
  for (BOOL found = Process32FirstW(snapshot.Get(), &entry); found; found = Process32NextW(snapshot.Get(), &entry)) {
    if (attended.programName.empty() || !std::wstring(entry.szExeFile).starts_with(attended.programName)) continue;
    const KernelHandle process(OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, entry.th32ProcessID));
    TerminateProcess(process.Get(), 77);
    WaitForSingleObject(process.Get(), 10'000);
    return true;
  }
  return false;
}

std::wstring Kill() {
  return WaitUntil([] { return !KillOne(); }) ? L"ok" : L"it stays";
}

std::wstring Hold(const std::wstring& path) {
  heldFile.Reset(CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  return heldFile ? L"ok" : L"error " + std::to_wstring(GetLastError());
}

std::wstring Set(const std::wstring& name, const std::wstring& folder) {
  const LSTATUS status = RegSetKeyValueW(HKEY_CURRENT_USER, kSettingsKey, name.c_str(), REG_SZ, folder.c_str(),
                                         static_cast<DWORD>((folder.size() + 1) * sizeof(wchar_t)));
  return status == ERROR_SUCCESS ? L"ok" : L"error " + std::to_wstring(status);
}

std::wstring Do(const Parts& parts) {
  const std::wstring& step = parts[0];
  if (step == L"set") return Set(parts[1], parts[2]);
  if (step == L"start") return Start(parts[1], parts[2]);
  if (step == L"adopt") return Adopt(parts[1]);
  if (step == L"watch") return Watch(std::stoi(parts[1]));
  if (step == L"answer") return Answer(parts[1]);
  if (step == L"close") return Close();
  if (step == L"log") return OnOneLine(Joined(LogLines(FindInstallerWindow(attended.id))));
  if (step == L"kill") return Kill();
  if (step == L"hold") return Hold(parts[1]);
  if (step == L"release") return heldFile.Reset(), L"ok";
  return L"unknown step";
}

}  // namespace

int main() {
  for (std::string line; std::getline(std::cin, line);) {
    while (!line.empty() && line.back() == '\r') line.pop_back();
    Parts parts;
    for (const std::string& part : SplitKeepingEmpty(line, '\t')) parts.push_back(Utf8ToWide(part));
    parts.resize(std::max(parts.size(), size_t{3}));
    std::printf("%s\n", WideToUtf8(Do(parts)).c_str());
    std::fflush(stdout);
  }
  return 0;
}
