// What the whole-program tests share: a site with packages, folders of the test's own, and the program. They replace
// the user's settings and data of the program, and so belong into a profile that nobody uses.
#pragma once

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "program/installer_process.h"
#include "support/installer_window.h"
#include "support/scripted_server.h"
#include "support/temp_folder.h"
#include "support/zip_builder.h"

// A plain file as the manifest describes it.
struct TestPackage {
  std::string filename;
  std::string content;    // the file itself
  std::string name = "";  // may be left out
  bool isDefault = true;
};

// 32 lower-case hexadecimal characters.
std::string Md5Of(const std::string& content);

class InstallerTest : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;

  // Publishes packages: the manifest, and each file at http://zendora.example/packages/<filename>.
  void Offer(const std::vector<TestPackage>& packages);
  static std::string FilePath(const TestPackage& package) { return "/packages/" + package.filename; }

  // Starts the program; returns when its window is there.
  void Start(const std::wstring& commandLine = L"", const std::wstring& program = InstallerProcess::ProgramPath());
  // Waits until the program has ended, and another that it has started shows its window.
  void FollowRelaunch();
  InstallerProcess& Process() { return *process_; }
  HWND Window() { return FindInstallerWindow(process_->Id()); }
  // Waits until the list of components is filled.
  void AwaitList();
  // The same, and presses Install.
  void PressInstall();
  void Close() { PostMessageW(Window(), WM_CLOSE, 0, 0); }

  // Each waits, and fails the test when what it waits for doesn't happen.
  void ExpectEnd();
  // A box or dialog whose text has this part.
  InstallerBox ExpectBox(const std::wstring& part = L"");
  void ExpectExit();

  static void ExpectContent(const std::wstring& path, const std::string& content);

  // The type field of every report that the site was sent.
  std::vector<std::string> ReportTypes() const;

  std::wstring TempPath(std::wstring_view name) const { return downloads_ / name; }
  std::wstring TargetPath(std::wstring_view name) const { return games_ / name; }
  // Before Start.
  static void SetNumber(const wchar_t* setting, DWORD value);
  static bool HasSetting(const wchar_t* setting);

  ScriptedServer server_;
  TempFolder games_, downloads_;

 private:
  std::optional<InstallerProcess> process_;
};
