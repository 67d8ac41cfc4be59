// One measurement a call, for bench.sh, which makes what is measured and puts the figures side by side. Prints
// numbers: seconds, or for memory mebibytes.
//   bench download URL FILE        the program's client, then a bare WinINet loop with the same chunk
//   bench hash FILE                the program's MD5
//   bench extract ARCHIVE FOLDER   the program's extraction, then a bare loop over the same zip library
//   bench fill PROGRAM             from the program's start until its list is filled
//   bench memory PROGRAM PACKAGE   the program's peak while it installs one package
#include <windows.h>
// These need windows.h before them.
#include <commctrl.h>
#include <psapi.h>
#include <shellapi.h>
#include <unzip.h>

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "core/context.h"
#include "install/package_texts.h"
#include "install/zip_extraction.h"
#include "net/crack_url.h"
#include "net/file_hash.h"
#include "net/http_client.h"
#include "support/installer_window.h"
#include "system/files.h"
#include "system/handles.h"
#include "system/path_names.h"
#include "system/text.h"
#include "ui/page_controls.h"

#include <iowin32.h>  // after unzip.h, whose types it uses

namespace {

constexpr size_t kChunkSize = 4096;

[[noreturn]] void GiveUp(const char* what) {
  std::fprintf(stderr, "%s failed (error %lu)\n", what, GetLastError());
  std::exit(1);
}

double SecondsOf(const std::function<void()>& work) {
  LARGE_INTEGER frequency, start, end;
  QueryPerformanceFrequency(&frequency);
  QueryPerformanceCounter(&start);
  work();
  QueryPerformanceCounter(&end);
  return static_cast<double>(end.QuadPart - start.QuadPart) / static_cast<double>(frequency.QuadPart);
}

FileHandle CreateNewFile(const std::wstring& path) {
  FileHandle file(CreateFileW(path.c_str(), FILE_GENERIC_WRITE, FILE_SHARE_WRITE, nullptr, CREATE_ALWAYS,
                              FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) GiveUp("creating a file");
  return file;
}

// --- Download

void DownloadBare(const std::wstring& url, const std::wstring& path) {
  const ParsedUrl target = CrackUrl(url);
  const InternetHandle session = OpenSession(L"bench");
  const InternetHandle connection(WinInet().InternetConnect(
      session.Get(), target.host.c_str(), PortOfScheme(target.scheme), L"", L"", INTERNET_SERVICE_HTTP, 0, 0));
  const InternetHandle request(WinInet().HttpOpenRequest(connection.Get(), L"GET", target.path.c_str(), nullptr,
                                                         nullptr, nullptr, INTERNET_FLAG_RELOAD, 0));
  if (!WinInet().HttpSendRequest(request.Get(), nullptr, 0, nullptr, 0)) GiveUp("sending a request");
  const FileHandle file = CreateNewFile(path);
  char chunk[kChunkSize];
  DWORD size = 0, written = 0;
  while (WinInet().InternetReadFile(request.Get(), chunk, kChunkSize, &size) && size != 0) {
    WriteFile(file.Get(), chunk, size, &written, nullptr);
  }
}

void IgnoreProgress(DownloadProgress*) {}

void MeasureDownload(const std::wstring& url, const std::wstring& path) {
  HttpClient client(L"bench");
  client.SetGzipEnabled(false);
  const double program = SecondsOf([&] {
    if (client.DownloadToFile(url, path, 0, IgnoreProgress).received == 0) GiveUp("the download");
  });
  const double bare = SecondsOf([&] { DownloadBare(url, path); });
  std::printf("%f %f\n", program, bare);
}

// --- Extraction

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

void MeasureExtraction(const std::wstring& archive, const std::wstring& folder) {
  InitCommonControls();
  app.mainWindow = CreateWindowExW(0, L"Static", L"", WS_POPUP, 0, 0, 600, 480, nullptr, nullptr, nullptr, nullptr);
  app.installPage = new InstallPageControls(app.mainWindow);
  RunState run;
  run.tmpPath = ParentFolder(archive);
  Package package;
  package.filename = WideToUtf8(LastComponent(archive));
  const double program = SecondsOf([&] {
    if (!ExtractZip(run, package, folder + L"\\program").ok) GiveUp("the extraction");
  });
  const double bare = SecondsOf([&] { ExtractBare(archive, folder + L"\\bare"); });
  std::printf("%f %f\n", program, bare);
}

// --- The whole program

PROCESS_INFORMATION StartProgram(const std::wstring& program, std::wstring arguments) {
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION process = {};
  arguments.insert(0, L" ");
  if (!CreateProcessW(program.c_str(), arguments.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                      &process)) {
    GiveUp("starting the program");
  }
  CloseHandle(process.hThread);
  return process;
}

void Close(const PROCESS_INFORMATION& process) {
  PostMessageW(FindInstallerWindow(process.dwProcessId), WM_CLOSE, 0, 0);
  WaitForSingleObject(process.hProcess, INFINITE);
  CloseHandle(process.hProcess);
}

void MeasureFilling(const std::wstring& program) {
  PROCESS_INFORMATION process = {};
  const double seconds = SecondsOf([&] {
    process = StartProgram(program, L"");
    const auto isFilled = [&] { return IsWindowEnabled(BottomButton(FindInstallerWindow(process.dwProcessId))) != 0; };
    if (!WaitUntil(isFilled, std::chrono::minutes(2))) GiveUp("filling the list");
  });
  Close(process);
  std::printf("%f\n", seconds);
}

void MeasureMemory(const std::wstring& program, const std::wstring& package) {
  const PROCESS_INFORMATION process = StartProgram(program, L"install:" + package);
  const auto hasEnded = [&] { return LogHas(FindInstallerWindow(process.dwProcessId), L"Installation finished"); };
  if (!WaitUntil(hasEnded, std::chrono::minutes(10))) GiveUp("the installation");
  PROCESS_MEMORY_COUNTERS memory = {};
  if (!GetProcessMemoryInfo(process.hProcess, &memory, sizeof memory)) GiveUp("asking for the memory");
  Close(process);
  std::printf("%f\n", static_cast<double>(memory.PeakWorkingSetSize) / (1024 * 1024));
}

}  // namespace

int main() {
  int count = 0;
  wchar_t** const list = CommandLineToArgvW(GetCommandLineW(), &count);
  const std::vector<std::wstring> arguments(list + 1, list + count);
  const auto is = [&](const wchar_t* name, size_t more) {
    return arguments.size() == more + 1 && arguments[0] == name;
  };
  app.instance = GetModuleHandleW(nullptr);
  if (is(L"download", 2)) {
    MeasureDownload(arguments[1], arguments[2]);
  } else if (is(L"hash", 1)) {
    std::printf("%f\n", SecondsOf([&] {
                  if (ComputeFileMd5(arguments[1], nullptr).empty()) GiveUp("the hash");
                }));
  } else if (is(L"extract", 2)) {
    MeasureExtraction(arguments[1], arguments[2]);
  } else if (is(L"fill", 1)) {
    MeasureFilling(arguments[1]);
  } else if (is(L"memory", 2)) {
    MeasureMemory(arguments[1], arguments[2]);
  } else {
    std::fputs("see the beginning of bench.cpp\n", stderr);
    return 2;
  }
  return 0;
}
