#include "install/package_placement.h"

#include <thread>

#include "install/manifest_paths.h"
#include "install/package_paths.h"
#include "support/box_recorder.h"
#include "support/install_scenario.h"
#include "support/installer_window.h"
#include "support/replaced_import.h"
#include "support/shell_recorder.h"
#include "support/zip_builder.h"
#include "system/path_names.h"
#include "system/text.h"

extern "C" decltype(&WriteFile) importedWriteFile __asm__("__imp__WriteFile@20");

class PackagePlacementTest : public InstallScenario {
 protected:
  // Makes the package an archive of these entries, announced with the size that they unpack to.
  void Pack(const std::vector<TestEntry>& entries) {
    BuildZip(file_, entries);
    package_.filetype = "application/x-zip-compressed";
    package_.upsize = 0;
    for (const TestEntry& entry : entries) package_.upsize += static_cast<int64_t>(entry.content.size());
  }
  PlacementResult Place() { return PlacePackage(run_, package_, target_); }
  // A program that runs as a package's installer, from beside the test program.
  static std::string SetupProgram() {
    wchar_t own[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, own, MAX_PATH);
    return ReadTestFile(JoinPath(ParentFolder(own), L"demo_setup_program.exe"));
  }

  // What that program makes of its arguments.
  const std::wstring note_ = folder_ / L"note";
};

TEST_F(PackagePlacementTest, EveryKindOfEntryIsUnpackedOverWhatIsThere) {
  const std::string password = package_.password = "p\xE4ss w\xFCrd";
  const std::vector<TestEntry> entries = {
      {.name = "models/deep/gta3.img", .content = TestBytes(12'288)},
      {.name = "\xC3\xA9.exe", .content = "new program", .stored = true},  // no code page, not even UTF-8
      {.name = "secret", .content = TestBytes(50'000, 2), .password = password},
      {.name = "secret and stored", .content = TestBytes(9'000, 3), .password = password, .stored = true},
      {.name = "secret of a stream", .content = TestBytes(9'000, 4), .password = password, .sizesFollow = true},
  };
  Pack(entries);
  WriteTestFile(target_ + L"\\\u00C3\u00A9.exe", "the old program, which is longer");
  EXPECT_TRUE(Place().ok);
  for (const TestEntry& entry : entries) {
    EXPECT_EQ(ReadTestFile(target_ + L"\\" + WidenBytes(entry.name)), entry.content) << entry.name;
  }
}

TEST_F(PackagePlacementTest, AnArchiveIsCompleteFrom99PercentOn) {
  const std::tuple<size_t, int64_t, uint32_t> cases[] = {
      {990, 1000, 99}, {989, 1000, 98}, {1500, 1000, 150}, {7, 0, 100}, {1, INT64_MAX, 0}};
  for (const auto& [content, upsize, percentage] : cases) {
    Pack({{"file.bin", std::string(content, 'x')}});
    package_.upsize = upsize;
    EXPECT_EQ(Place().ok, percentage >= 99) << content << " of " << upsize;
    EXPECT_EQ(run_.packageStats["fox"].extracted, percentage) << content << " of " << upsize;
  }
}

TEST_F(PackagePlacementTest, WhatIsSkippedOrSpoiltDoesNotCount) {
  Pack({{"good.txt", "good"}, {.name = "bad.txt", .content = "some content", .stored = true}, {"../\nup.txt", "bad"}});
  std::string bytes = ReadTestFile(file_);
  ASSERT_TRUE(ReplaceFirst(bytes, "some content", "sOme content"));
  WriteTestFile(file_, bytes);
  EXPECT_EQ(Place().error, ERROR_CRC);
  EXPECT_EQ(window_.LogLines(),
            (std::vector<std::wstring>{
                L"Extracting: good.txt", L"Extracting: bad.txt", L"[ERROR] Wrong content (zip) (bad.txt)",
                L"[ERROR] Unsafe entry name (zip) (..\\?up.txt)", L"Extraction complete (4 / 19)"}));
  EXPECT_EQ(run_.errorRecords, IncompleteExtractionRecord("fox", ERROR_CRC, 0, 4, 19));
  package_.upsize = 0;  // even if nothing is announced
  EXPECT_FALSE(Place().ok);
}

TEST_F(PackagePlacementTest, WhatCantBeOpenedIsNotPlaced) {
  Pack({{"data.bin", TestBytes(50'000), "right"}});
  package_.password = "wrong";
  EXPECT_FALSE(Place().ok);
  EXPECT_EQ(window_.LogLines().at(0), L"[ERROR] Unable to open file (zip)");
  WriteTestFile(file_, ReadTestFile(file_).substr(0, 20'000));
  EXPECT_NE(Place().error, 0u);
  EXPECT_EQ(window_.LogLines().back(), L"[ERROR] Unable to open zip file");
  EXPECT_FALSE(PathExists(target_ + L"\\data.bin"));
}

TEST_F(PackagePlacementTest, FilesAreVerified) {
  WriteTestFile(file_, kFox);
  WriteTestFile(target_ + L"\\models\\gta3.img", "");
  package_.verify = "fox||models|models/gta3.img|";
  EXPECT_TRUE(Place().ok);
  package_.verify = "fox|lost folder/lost.dll|lost too.dll";
  const BoxRecorder boxes({IDOK});
  EXPECT_EQ(Place().error, ERROR_PATH_NOT_FOUND);
  const std::wstring path = target_ + L"\\lost folder/lost.dll";
  EXPECT_EQ(run_.errorRecords, VerifyFailedRecord("fox", ERROR_PATH_NOT_FOUND, path));
  EXPECT_EQ(boxes.Boxes().at(0).text,
            L"Component installation failed\n\nRequired file or folder is missing:\n" + path +
                L"\n\nThis error could be caused by other program (for example by virus or antivirus)");
}

TEST_F(PackagePlacementTest, NamesThatOnlyLookStrangeAreTaken) {
  Pack({{"./models//deep/./gta3.img", "content"}});
  package_.verify = "/models|.\\models\\\\deep//gta3.img|./";
  package_.name = L".";
  EXPECT_FALSE(FindUnsafePath(package_));
  EXPECT_EQ(ResolveTargetFolder(run_, package_), run_.installPath);
  EXPECT_TRUE(Place().ok);
  EXPECT_EQ(ReadTestFile(target_ + L"\\models\\deep\\gta3.img"), "content");
}

TEST_F(PackagePlacementTest, ProtectedFilesOfAnOlderInstallationAreOverwritten) {
  const std::wstring old = target_ + L"\\fox";
  for (const bool packed : {true, false}) {
    if (packed) {
      Pack({{"fox", kFox}});
    } else {
      WriteTestFile(file_, kFox);
      package_.filetype.clear();
    }
    WriteTestFile(old, "an older version");
    SetFileAttributesW(old.c_str(), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    EXPECT_TRUE(Place().ok);
    EXPECT_EQ(ReadTestFile(old), kFox);
    SetFileAttributesW(old.c_str(), FILE_ATTRIBUTE_NORMAL);
  }
}

// A running game holds the file that is to be written.
TEST_F(PackagePlacementTest, AFileInUseCountsOnlyIfItHasTheRightSize) {
  Pack({{"first", "content"}, {"held", kFox}});
  for (const auto& [content, taken] : {std::pair(kOther, true), {kFox + "!", false}}) {
    WriteTestFile(target_ + L"\\held", content);
    const FileHandle held(
        CreateFileW((target_ + L"\\held").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    const PlacementResult result = Place();
    EXPECT_EQ(result.ok, taken);
    EXPECT_EQ(result.error, taken ? 0u : DWORD{ERROR_SHARING_VIOLATION});
    EXPECT_EQ(ReadTestFile(target_ + L"\\held"), content);
  }
  EXPECT_EQ(window_.LogLines().rbegin()[1], L"[ERROR] Invalid zip handle (32) (held)");
  EXPECT_EQ(run_.errorRecords, IncompleteExtractionRecord("fox", ERROR_SHARING_VIOLATION, 0, 7, 50));
  EXPECT_TRUE(Place().ok) << "the game has ended";
  EXPECT_EQ(ReadTestFile(target_ + L"\\held"), kFox);
}

// Somebody cancels while the first bytes are written.
static BOOL WINAPI WriteAndCancel(HANDLE file, const void* bytes, DWORD count, DWORD* written, OVERLAPPED* overlapped) {
  static const auto write = reinterpret_cast<decltype(&WriteFile)>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32"), "WriteFile")));
  app.cancelRequested.Utter();
  return write(file, bytes, count, written, overlapped);
}

TEST_F(PackagePlacementTest, ACancelEndsTheExtractionWithinAnEntry) {
  Pack({{"large", std::string(1'000'000, 'x')}, {"second", "content"}});
  {
    const ReplacedImport writeFile(importedWriteFile, WriteAndCancel);
    EXPECT_FALSE(Place().ok);
  }
  EXPECT_EQ(FileSize(target_ + L"\\large"), 4096u);
  EXPECT_FALSE(PathExists(target_ + L"\\second"));
}

TEST_F(PackagePlacementTest, OnlyThePackagesOwnInstallerIsRun) {
  const std::string program = SetupProgram();
  const std::tuple<const char*, bool, std::string> cases[] = {
      {"the downloaded file", false, "setup.exe"},  // though somebody has planted another one
      {"the unpacked file", true, "/setup.exe"},
      {"the downloaded file, without a name", false, ""}};
  for (const auto& [what, packed, install] : cases) {
    SCOPED_TRACE(what);
    const BoxRecorder none({});
    if (packed) {
      Pack({{"setup.exe", program}});
    } else {
      WriteTestFile(file_, program);
      package_.filetype = kInstallerType;
      WriteTestFile(target_ + L"\\setup.exe", "planted");
    }
    package_.install = install + "|/note " + WideToUtf8(note_);
    EXPECT_TRUE(Place().ok);
    EXPECT_EQ(ReadTestFile(note_), "started\n");
    DeleteFileW(note_.c_str());
  }
}

// It has the size and the name of the package's own, and is held so that it can't be overwritten: that counts as
// complete, but nobody has proven it.
TEST_F(PackagePlacementTest, AHeldInstallerOfAnotherOriginIsNotRun) {
  const std::string program = SetupProgram();
  std::string planted = program;
  planted.back() = static_cast<char>(planted.back() + 1);
  const std::wstring path = target_ + L"\\setup.exe";
  WriteTestFile(path, planted);
  const FileHandle held(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
  Pack({{"setup.exe", program}});
  package_.install = "setup.exe|/note " + WideToUtf8(note_);
  const BoxRecorder boxes({IDNO});
  Place();
  EXPECT_FALSE(PathExists(note_));
  EXPECT_NE(boxes.Boxes().at(0).text.find(file_), std::wstring::npos);
}

TEST_F(PackagePlacementTest, AnInstallerThatDoesntStartIsShownToTheUser) {
  const BoxRecorder boxes({IDYES});
  const ShellRecorder shell;
  WriteTestFile(file_, kFox);
  package_.filetype = kInstallerType;
  package_.install = "|/S";
  const uint32_t error = Place().error;
  EXPECT_NE(error, 0u);
  EXPECT_EQ(run_.errorRecords, InstallerNotStartedRecord("fox", error));
  EXPECT_EQ(boxes.Boxes().at(0).text,
            L"Unable to start the process\n\nYou can try to start this process manually:\n" + file_ + L"\n\nOpen?");
  EXPECT_EQ(shell.Starts().at(0).parameters, L"/select, " + file_);
}

TEST_F(PackagePlacementTest, ACancelEndsTheInstaller) {
  WriteTestFile(file_, SetupProgram());
  package_.filetype = kInstallerType;
  package_.install = "|/hold " + WideToUtf8(note_);
  std::thread user([this] {
    EXPECT_TRUE(WaitUntil([this] { return PathExists(note_); }));
    EXPECT_FALSE(DeleteFileW(note_.c_str())) << "the installer runs";
    app.cancelRequested.Utter();
  });
  EXPECT_TRUE(Place().ok) << "it counts as placed";
  user.join();
  EXPECT_TRUE(WaitUntil([this] { return DeleteFileW(note_.c_str()) != FALSE; }));
}
