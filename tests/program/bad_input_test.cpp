// What a broken or hostile site, and a machine that is out of order, may do to the program: the user is told what is
// wrong, nothing is written astray, and the program goes on.
#include <algorithm>
#include <filesystem>

#include "program/installer_test.h"
#include "system/files.h"
#include "system/path_names.h"
#include "system/text.h"

namespace {

class BadInput : public InstallerTest {
 protected:
  // One program after the other, each with a server and a temporary folder as in the beginning.
  void StartAnew(const TestPackage& package) {
    server_.reset();
    StartServer();
    Empty(downloads_.Path());
    Offer({package});
  }
  static void Empty(const std::filesystem::path& folder) {
    for (const auto& entry : std::filesystem::directory_iterator(folder)) std::filesystem::remove_all(entry);
  }
  // Relative to the folder.
  static std::vector<std::wstring> FilesBelow(const std::wstring& folder) {
    std::vector<std::wstring> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
      if (entry.is_regular_file()) files.push_back(entry.path().lexically_relative(folder).wstring());
    }
    return files;
  }

  void CloseAndExpectExit() {
    Close();
    ExpectExit();
  }
};

TEST_F(BadInput, DownloadsThatDontMatchTheManifest) {
  const std::string content = TestBytes(100'000), other = TestBytes(100'000, 9);
  const std::string inCapitals = "ABCDEF" + Md5Of(content).substr(6);
  const auto hashMismatch = [](const std::string& bytes) {
    return L"Hash mismatch (" + WidenBytes(Md5Of(bytes)) + L")";
  };
  const struct {
    const char* what;
    ScriptedAnswer answer;
    std::wstring logged;
    std::optional<std::string> md5 = {};
  } cases[] = {
      {"a page instead of the file", {.body = "<html>Gone</html>"}, L"Size mismatch (17)"},
      {"more than announced", {.body = content + "more", .announceLength = false}, L"Size mismatch (100004)"},
      {"another file of the same size", {.body = other}, hashMismatch(other)},
      {"a digest in capitals", {.body = content}, L"Expected hash: " + WidenBytes(inCapitals), inCapitals},
      {"no such file", {.status = 404}, L"Http code: 404"},
      {"nothing at all", {.closeWithoutAnswer = true}, L"Processing package: bad.dat"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.what);
    const TestPackage package{
        .filename = "bad.dat", .content = content, .title = "Bad one", .name = "Bad", .md5 = test.md5};
    StartAnew(package);
    server_->Answer(FilePath(package), test.answer);
    Start(L"install:bad.dat source:main", InstallerProcess::ImpatientProgramPath());
    const InstallerBox box = ExpectBox(L"There was an error during download\n\nPackage: Bad one\n\nError code: ");
    EXPECT_EQ(box.caption, L"Error");
    EXPECT_TRUE(box.text.ends_with(L"\n\nWould you like to try again?"));
    ExpectLog(test.logged);
    AnswerBox(box, IDNO);
    ASSERT_TRUE(
        WaitUntil([this] { return ShownText(ChildAt(Window(), L"Static", 10, 10)) == L"Installation cancelled"; }));
    EXPECT_EQ(ReportTypes(), (std::vector<std::string>{"install_start", "download_cancel"}));
    EXPECT_EQ(FilesBelow(games_.Path()), std::vector<std::wstring>{});
    CloseAndExpectExit();
  }
}

// The package is as the manifest says, but can't be placed.
TEST_F(BadInput, PackagesThatCantBePlaced) {
  const std::string data = TestBytes(60'000);
  const std::string zip = ZipOf({{"data.bin", data}}), secret = ZipOf({{"data.bin", data, "right"}});
  const std::wstring unsafe = L"[ERROR] Unsafe entry name (zip) ";
  const struct {
    const char* what;
    std::string archive;
    std::wstring logged;
    const char* password = "";
  } cases[] = {
      {"half an archive", zip.substr(0, zip.size() / 2), L"[ERROR] Unable to open zip file"},
      {"a page that calls itself an archive", "<html></html>", L"[ERROR] Unable to open zip file"},
      {"a wrong password", secret, L"[ERROR] Unable to open file (zip)", "wrong"},
      {"no password", secret, L"[ERROR] Unable to open file (zip)"},
      {"it climbs", ZipOf({{"a/../../stray.bin", data}}), unsafe + L"(a\\..\\..\\stray.bin)"},
      {"from the root", ZipOf({{"/stray.bin", data}}), unsafe + L"(\\stray.bin)"},
      {"another drive", ZipOf({{"C:/stray.bin", data}}), unsafe + L"(C:\\stray.bin)"},
      {"a device", ZipOf({{"nul.txt", data}}), unsafe + L"(nul.txt)"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.what);
    StartAnew({.filename = "bad.zip",
               .content = test.archive,
               .name = "Bad",
               .filetype = kZipType,
               .password = test.password,
               .upsize = data.size()});
    Start(L"install:bad.zip source:main");
    const InstallerBox box = ExpectBox(L"There was an error during installation\n\nPackage: bad.zip");
    ExpectLog(test.logged);
    AnswerBox(box, IDNO);
    ExpectEnd();
    EXPECT_EQ(FilesBelow(games_.Path()), std::vector<std::wstring>{});
    EXPECT_FALSE(PathExists(JoinPath(ParentFolder(games_.Path()), L"stray.bin")));
    EXPECT_FALSE(PathExists(L"C:\\stray.bin"));
    EXPECT_NE(server_->Requests().back().body.find("\r\npackage=bad.zip&type=extract&error="), std::string::npos);
    CloseAndExpectExit();
  }
}

TEST_F(BadInput, DisksThatCantTakeThePackage) {
  if (!IsDirectory(L"C:\\full")) GTEST_SKIP() << "no such disks here";
  const struct {
    const char* what;
    const wchar_t *setting, *folder, *message;
  } cases[] = {
      {"a full disk", L"LastInstallPath", L"C:\\full", L"during installation\n\nPackage: a.dat\n\nError code: 112\n"},
      {"a locked disk", L"LastInstallPath", L"C:\\locked", L"during installation\n\nPackage: a.dat\n\nError code: 5\n"},
      {"a full temporary folder", L"LastTmpPath", L"C:\\full",
       L"during download\n\nPackage: a.dat\n\nError code: 112\n"},
  };
  for (const auto& test : cases) {
    SCOPED_TRACE(test.what);
    StartAnew({.filename = "a.dat", .content = TestBytes(3'000'000), .name = "N"});
    SetFolder(L"LastInstallPath", games_.Path());
    SetFolder(test.setting, test.folder);
    Start(L"install:a.dat source:main");
    AnswerBox(ExpectBox(test.message), IDNO);
    CloseAndExpectExit();
    Empty(L"C:\\full");
  }
}

}  // namespace
