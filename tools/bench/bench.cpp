// One measurement a call, for bench.sh, which makes what is measured and puts the figures side by side. Prints numbers:
// seconds, for the answers of a window milliseconds (95 of 100 came sooner).
//   bench start PROGRAM ROWS       from the start until the window is shown and its list has so many rows
//   bench install PROGRAM          from the click on Install: download, hash, placing; answers
//   bench setup PROGRAM            another installer that asks nothing: until its window is shown, until it has ended;
//                                  answers
//   bench download URL FILE        a bare WinINet loop with the program's chunk
//   bench extract ARCHIVE FOLDER   a bare loop over the program's zip library
#include <windows.h>
// These need windows.h before them.
#include <commctrl.h>
#include <shellapi.h>
#include <unzip.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "install/package_texts.h"
#include "net/crack_url.h"
#include "net/http_client.h"
#include "support/installer_window.h"
#include "system/files.h"
#include "system/handles.h"
#include "system/path_names.h"
#include "system/text.h"

#include <iowin32.h>  // after unzip.h, whose types it uses

namespace {

constexpr size_t kChunkSize = 4096;
constexpr DWORD kGlanceMs = 15;  // between two looks at a window
constexpr uint64_t kPatienceMs = 20 * 60 * 1000;

[[noreturn]] void GiveUp(const char* what) {
  std::fprintf(stderr, "%s failed (error %lu)\n", what, GetLastError());
  std::exit(1);
}

double Now() {
  LARGE_INTEGER frequency, counter;
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&counter);
  return static_cast<double>(counter.QuadPart) / static_cast<double>(frequency.QuadPart);
}

double SecondsOf(const std::function<void()>& work) {
  const double start = Now();
  work();
  return Now() - start;
}

FileHandle CreateNewFile(const std::wstring& path) {
  FileHandle file(CreateFileW(path.c_str(), FILE_GENERIC_WRITE, FILE_SHARE_WRITE, nullptr, CREATE_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) GiveUp("creating a file");
  return file;
}

// --- The bare loops

void DownloadBare(const std::wstring& url, const std::wstring& path) {
  const ParsedUrl target = CrackUrl(url);
  const HttpSession session = OpenSession(L"bench");
  const InternetHandle connection(WinInet().InternetConnect(
      session->Get(), target.host.c_str(), PortOfScheme(target.scheme), L"", L"", INTERNET_SERVICE_HTTP, 0, 0));
  const InternetHandle request(WinInet().HttpOpenRequest(connection.Get(), L"GET", target.path.c_str(), nullptr,
                                                         nullptr, nullptr,
                                                         INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE, 0));
  if (!WinInet().HttpSendRequest(request.Get(), nullptr, 0, nullptr, 0)) GiveUp("sending a request");
  const FileHandle file = CreateNewFile(path);
  char chunk[kChunkSize];
  DWORD size = 0, written = 0;
  while (WinInet().InternetReadFile(request.Get(), chunk, kChunkSize, &size) && size != 0) {
    WriteFile(file.Get(), chunk, size, &written, nullptr);
  }
}

void ExtractBare(const std::wstring& archivePath, const std::wstring& folder) {
  zlib_filefunc64_def functions;
  fill_win32_filefunc64W(&functions);
  const unzFile archive = unzOpen2_64(archivePath.c_str(), &functions);
  if (!archive) GiveUp("opening the archive");
  for (int position = unzGoToFirstFile(archive); position == UNZ_OK; position = unzGoToNextFile(archive)) {
    char name[MAX_PATH];
    unz_file_info64 info;
    unzGetCurrentFileInfo64(archive, &info, name, sizeof name, nullptr, 0, nullptr, 0);
    if (info.uncompressed_size == 0) continue;
    const std::wstring path = JoinPath(folder, EntryPath(name));
    CreateDirectories(ParentFolder(path));
    const FileHandle file = CreateNewFile(path);
    unzOpenCurrentFile(archive);
    char chunk[kChunkSize];
    DWORD written = 0;
    for (int count; (count = unzReadCurrentFile(archive, chunk, kChunkSize)) > 0;) {
      WriteFile(file.Get(), chunk, static_cast<DWORD>(count), &written, nullptr);
    }
    unzCloseCurrentFile(archive);
  }
  unzClose(archive);
}

// --- Programs with a window

KernelHandle StartProgram(const std::wstring& program, DWORD& id) {
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process = {};
  std::wstring commandLine = L"\"" + program + L"\"";
  if (!CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                      &process)) {
    GiveUp("starting the program");
  }
  CloseHandle(process.hThread);
  id = process.dwProcessId;
  return KernelHandle(process.hProcess);
}

// How long a window takes to answer.
class Answers {
 public:
  void Ask(HWND window) {
    DWORD_PTR result = 0;
    const double seconds = SecondsOf([&] { SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_NORMAL, 5000, &result); });
    milliseconds_.push_back(seconds * 1000);
  }
  // All but one in twenty are faster than the first; the second is the slowest.
  std::pair<double, double> SlowOnes() {
    if (milliseconds_.empty()) return {};
    std::sort(milliseconds_.begin(), milliseconds_.end());
    return {milliseconds_[milliseconds_.size() * 95 / 100], milliseconds_.back()};
  }

 private:
  std::vector<double> milliseconds_;
};

void AwaitList(DWORD process, int rows) {
  const auto isFilled = [&] {
    const HWND window = FindInstallerWindow(process);
    return IsWindowVisible(window) && IsWindowEnabled(BottomButton(window)) &&
           SendMessageW(ComponentList(window), LVM_GETITEMCOUNT, 0, 0) >= rows;
  };
  if (!WaitUntil(isFilled, std::chrono::minutes(2))) GiveUp("filling the list");
}

void Close(DWORD process, const KernelHandle& handle) {
  PostMessageW(FindInstallerWindow(process), WM_CLOSE, 0, 0);
  WaitForSingleObject(handle.Get(), INFINITE);
}

void MeasureStart(const std::wstring& program, int rows) {
  DWORD process = 0;
  KernelHandle handle;
  const double seconds = SecondsOf([&] {
    handle = StartProgram(program, process);
    AwaitList(process, rows);
  });
  Close(process, handle);
  std::printf("%f\n", seconds);
}

// What the installation page shows, read from another process without disturbing it much.
class InstallationWatch {
 public:
  explicit InstallationWatch(HWND window) : window_(window) {
    const auto isComplete = [&] {
      package_ = ChildAt(window, WC_STATICW, 10, 10);
      packageDetail_ = ChildAt(window, WC_STATICW, 10, 54);
      total_ = ChildAt(window, WC_STATICW, 10, 79);
      return package_ && packageDetail_ && total_ && PageOf(window) == InstallPage;
    };
    if (!WaitUntil(isComplete)) GiveUp("showing the installation page");
  }
  // The moment at which a condition holds for the first time. Meanwhile the window has to answer.
  double Await(const std::function<bool()>& condition) {
    const uint64_t deadline = GetTickCount64() + kPatienceMs;
    while (!condition()) {
      if (GetTickCount64() > deadline) GiveUp("the installation");
      answers_.Ask(window_);
      Sleep(kGlanceMs);
    }
    return Now();
  }
  bool IsHashing() const { return ShownText(packageDetail_).starts_with(L"Checking downloaded file") || IsPlacing(); }
  bool IsPlacing() const { return ShownText(package_) == L"Download completed"; }
  bool IsOver() const { return ShownText(total_) == L"Installation finished"; }
  std::pair<double, double> SlowAnswers() { return answers_.SlowOnes(); }

 private:
  HWND window_, package_, packageDetail_, total_;
  Answers answers_;
};

void MeasureInstallation(const std::wstring& program) {
  DWORD process = 0;
  const KernelHandle handle = StartProgram(program, process);
  AwaitList(process, 1);
  const HWND window = FindInstallerWindow(process);
  const double click = Now();
  Press(BottomButton(window));
  InstallationWatch watch(window);
  const double hashing = watch.Await([&] { return watch.IsHashing(); });
  const double placing = watch.Await([&] { return watch.IsPlacing(); });
  const double end = watch.Await([&] { return watch.IsOver(); });
  Close(process, handle);
  const auto [slow, slowest] = watch.SlowAnswers();
  std::printf("%f %f %f %f %f\n", hashing - click, placing - hashing, end - placing, slow, slowest);
}

struct WindowSearch {
  DWORD process;
  HWND found;
};

BOOL CALLBACK LookAt(HWND window, LPARAM parameter) {
  auto& search = *reinterpret_cast<WindowSearch*>(parameter);
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (process == search.process && IsWindowVisible(window)) search.found = window;
  return !search.found;
}

HWND FindAnyWindow(DWORD process) {
  WindowSearch search{process, nullptr};
  EnumWindows(LookAt, reinterpret_cast<LPARAM>(&search));
  return search.found;
}

void MeasureSetup(const std::wstring& program) {
  DWORD process = 0;
  HWND window = nullptr;
  const double start = Now();
  const KernelHandle handle = StartProgram(program, process);
  const auto isShown = [&] { return (window = FindAnyWindow(process)) != nullptr; };
  if (!WaitUntil(isShown, std::chrono::minutes(2))) GiveUp("waiting for the window");
  const double shown = Now();
  Answers answers;
  while (WaitForSingleObject(handle.Get(), kGlanceMs) == WAIT_TIMEOUT) answers.Ask(window);
  const auto [slow, slowest] = answers.SlowOnes();
  std::printf("%f %f %f %f\n", shown - start, Now() - shown, slow, slowest);
}

}  // namespace

int main() {
  int count = 0;
  wchar_t** const list = CommandLineToArgvW(GetCommandLineW(), &count);
  const std::vector<std::wstring> arguments(list + 1, list + count);
  const auto is = [&](const wchar_t* name, size_t more) {
    return arguments.size() == more + 1 && arguments[0] == name;
  };
  if (is(L"start", 2)) {
    MeasureStart(arguments[1], std::stoi(arguments[2]));
  } else if (is(L"install", 1)) {
    MeasureInstallation(arguments[1]);
  } else if (is(L"setup", 1)) {
    MeasureSetup(arguments[1]);
  } else if (is(L"download", 2)) {
    std::printf("%f\n", SecondsOf([&] { DownloadBare(arguments[1], arguments[2]); }));
  } else if (is(L"extract", 2)) {
    std::printf("%f\n", SecondsOf([&] { ExtractBare(arguments[1], arguments[2]); }));
  } else {
    std::fputs("see the beginning of bench.cpp\n", stderr);
    return 2;
  }
  return 0;
}
