#include "install/finishing_tasks.h"

#include <shlobj.h>

#include "support/placement_fixture.h"
#include "system/com.h"
#include "system/files.h"

using FinishingTasksTest = PlacementFixture;

// Program, folder and description, as the shell reads them; empty when there is no shortcut.
static std::wstring ReadLink(const std::wstring& path) {
  const ComSession session;
  ComPointer<IShellLinkW> link;
  ComPointer<IPersistFile> file;
  wchar_t program[MAX_PATH] = L"", folder[MAX_PATH] = L"", description[MAX_PATH] = L"";
  CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_ALL, IID_PPV_ARGS(link.Receive()));
  link->QueryInterface(IID_PPV_ARGS(file.Receive()));
  if (FAILED(file->Load(path.c_str(), STGM_READ))) return {};
  link->GetPath(program, MAX_PATH, nullptr, 0);
  link->GetWorkingDirectory(folder, MAX_PATH);
  link->GetDescription(description, MAX_PATH);
  return program + std::wstring(L"|") + folder + L"|" + description;
}

TEST_F(FinishingTasksTest, LinksAreReadableByTheShell) {
  for (const wchar_t* file : {L"zt.exe", L"bin\\\u00E9.exe"}) WriteTestFile(target_ + L"\\" + file, "program");
  const std::wstring game = target_ + L"\\zt.exe|" + target_ + L"|", desktop = SpecialFolder(CSIDL_DESKTOP) + L"\\";
  const std::tuple<const char*, const wchar_t*, std::wstring> cases[] = {
      {"zt.exe", L"zt.exe.lnk", game},
      {"bin/\xE9.exe||", L"\u00E9.exe.lnk", target_ + L"\\bin\\\u00E9.exe|" + target_ + L"\\bin|"},
      {"zt.exe|zt title.", L"zt title..lnk", game},
      {"zt.exe|zt title.|To play", L"zt title..lnk", game + L"To play"},
      {"zt.exe|zt link.lnk", L"zt link.lnk", game},
      {"missing.exe|zt missing", L"zt missing.lnk", L""},
      {"zt.exe|..\\zt outside", L"..\\zt outside.lnk", L""},
  };
  for (const auto& [link, name, contents] : cases) {
    package_.link = link;
    CreateDesktopLink(package_, target_);
    EXPECT_EQ(ReadLink(desktop + name), contents) << link;
  }
  for (const auto& [link, name, contents] : cases) DeleteFileW((desktop + name).c_str());
  RemoveDirectoryW((desktop + L"zt").c_str());
  EXPECT_EQ(window_.LogLines(), std::vector<std::wstring>{L"[ERROR] Unsafe path (..\\zt outside)"});
}
