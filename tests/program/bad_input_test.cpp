// What a broken or hostile site, and a machine that is out of order, may do to the program: the user is told what is
// wrong, nothing is written astray, and the program goes on.
#include <algorithm>
#include <filesystem>

#include "program/installer_test.h"
#include "system/files.h"
#include "system/path_names.h"
#include "system/text.h"

namespace {

ScriptedAnswer AnswerOf(const std::string& body, int status = 200) {
  ScriptedAnswer answer;
  answer.status = status;
  answer.body = body;
  return answer;
}

class BadInput : public InstallerTest {
 protected:
  // Every file below a folder, relative to it.
  static std::vector<std::wstring> FilesBelow(const std::wstring& folder) {
    std::vector<std::wstring> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
      if (entry.is_regular_file()) files.push_back(entry.path().lexically_relative(folder).wstring());
    }
    std::sort(files.begin(), files.end());
    return files;
  }

  void ExpectInText(const std::wstring& text, const std::wstring& part) {
    EXPECT_NE(text.find(part), std::wstring::npos)
        << testing::PrintToString(part) << " is not in " << testing::PrintToString(text);
  }

  // The list stays empty and nothing is kept; the program closes as ever.
  void ExpectNoList() {
    EXPECT_EQ(ComponentRows(Window()).size(), 3u);
    EXPECT_EQ(ComponentRows(Window()).front().title, L"Loading..");
    EXPECT_FALSE(IsWindowEnabled(BottomButton(Window())));
    EXPECT_FALSE(FindBox(Process().Id()).window);
    Close();
    ExpectExit();
    EXPECT_FALSE(PathExists(TempPath(L"manifest.xml")));
  }
};

TEST_F(BadInput, BrokenManifests) {
  const char* const manifests[] = {
      "<downloader><packages>",                            // cut off
      "<other><packages/></other>",                        // of another program
      "<!DOCTYPE html><html><body>Sign in</body></html>",  // what hotels answer
      "no XML at all",
      "<downloader/>",
  };
  for (const std::string xml : manifests) {
    SCOPED_TRACE(xml);
    server_.reset();
    StartServer();
    OfferManifest(xml);
    Start();
    ASSERT_TRUE(WaitUntil([this] { return !server_->Requests().empty(); }));
    if (xml == "<downloader/>") {
      // Well formed, so it is kept.
      ASSERT_TRUE(WaitUntil([this] { return PathExists(TempPath(L"manifest.xml")); }));
      EXPECT_FALSE(IsWindowEnabled(BottomButton(Window())));
      continue;
    }
    ExpectNoList();
  }
}

TEST_F(BadInput, ATruncatedCacheIsDroppedAndFetchedNextTime) {
  Offer({{.filename = "a.dat", .content = TestBytes(5000), .name = "N"}});
  WriteTestFile(TempPath(L"manifest.xml"), "<downloader><packages><package><filename val");
  Start();
  ASSERT_TRUE(WaitUntil([this] { return !PathExists(TempPath(L"manifest.xml")); }));
  ExpectNoList();
  EXPECT_TRUE(server_->Requests().empty());
  Start();
  PressInstall();
  ExpectEnd();
}

struct BadDownload {
  const char* what;
  ScriptedAnswer answer;
  std::optional<uint64_t> size;
  std::optional<std::string> md5;
  std::wstring logged;  // empty: anything
};

TEST_F(BadInput, DownloadsThatDontMatchTheManifest) {
  const std::string content = TestBytes(100'000);
  const ScriptedAnswer right = AnswerOf(content);
  ScriptedAnswer longer = AnswerOf(content + "more");
  longer.announceLength = false;
  ScriptedAnswer silent;
  silent.closeWithoutAnswer = true;
  const BadDownload cases[] = {
      {"a page instead of the file", AnswerOf("<html>Gone</html>"), {}, {}, L"Size mismatch (17)"},
      {"another file of the same size",
       AnswerOf(TestBytes(100'000, 9)),
       {},
       {},
       L"Hash mismatch (" + WidenBytes(Md5Of(TestBytes(100'000, 9))) + L")"},
      {"a wrong digest", right, {}, std::string(32, '0'), L"Hash mismatch (" + WidenBytes(Md5Of(content)) + L")"},
      {"a digest in capitals",
       right,
       {},
       "ABCDEF" + Md5Of(content).substr(6),
       L"Hash mismatch (" + WidenBytes(Md5Of(content)) + L")"},
      {"a wrong size", right, 100'001, {}, L"Size mismatch (100000)"},
      {"more than the manifest says", longer, {}, {}, L"Size mismatch (100004)"},
      {"no such file", AnswerOf("", 404), {}, {}, L"Http code: 404"},
      {"an error of the server", AnswerOf("", 500), {}, {}, L"Http code: 500"},
      {"an empty file", AnswerOf(""), {}, {}, L"Http code: 200"},
      {"nothing at all", silent, {}, {}, L""},
  };
  for (const BadDownload& bad : cases) {
    SCOPED_TRACE(bad.what);
    server_.reset();
    StartServer();
    const TestPackage package{
        .filename = "bad.dat", .content = content, .title = "Bad one", .name = "Bad", .size = bad.size, .md5 = bad.md5};
    Offer({package});
    server_->Answer(FilePath(package), bad.answer);
    Start(L"install:bad.dat source:main");
    const InstallerBox box = ExpectBox(L"", std::chrono::seconds(90));
    EXPECT_EQ(box.caption, L"Error");
    ExpectInText(box.text, L"There was an error during download\n\nPackage: Bad one\n\nError code: ");
    ExpectInText(box.text, L"\n\nWould you like to try again?");
    if (!bad.logged.empty()) ExpectLog(bad.logged);
    AnswerBox(box, IDNO);
    ASSERT_TRUE(
        WaitUntil([this] { return ShownText(ChildAt(Window(), L"Static", 10, 10)) == L"Installation cancelled"; }));
    EXPECT_EQ(ReportTypes(), (std::vector<std::string>{"install_start", "download_cancel"}));
    EXPECT_EQ(FilesBelow(games_.Path()), std::vector<std::wstring>{});
    const auto lines = LogLines(Window());
    EXPECT_LE(std::count(lines.begin(), lines.end(), L"Downloading packages manifest"), 1);
    Close();
    ExpectExit();
    for (const wchar_t* file : {L"bad.dat", L"bad.dat.stat", L"manifest.xml"}) {
      SetFileAttributesW(TempPath(file).c_str(), FILE_ATTRIBUTE_NORMAL);
      DeleteFileW(TempPath(file).c_str());
    }
  }
}

// The rest is asked for, and the file is whole in the end.
TEST_F(BadInput, AServerThatSendsLessThanItAnnounced) {
  const TestPackage package{.filename = "a.dat", .content = TestBytes(400'000), .name = "N"};
  Offer({package});
  ScriptedAnswer half = AnswerOf(package.content);
  half.closeAfter = 50 * 4096;
  server_->AnswerNext(FilePath(package), half);
  Start(L"install:a.dat source:main");
  ExpectEnd();
  ExpectContent(TargetPath(L"N\\a.dat"), package.content);
  EXPECT_EQ(server_->RequestsOf(FilePath(package)).back().headers.at("range"), "bytes=204800-");
}

struct BadPackage {
  const char* what;
  TestPackage package;
  std::wstring logged;
};

// The package is as the manifest says, but can't be placed.
TEST_F(BadInput, PackagesThatCantBePlaced) {
  const std::string data = TestBytes(60'000);
  const std::string zip = ZipOf({{"data.bin", data}});
  const std::string secret = ZipOf({{"data.bin", data, "right"}});
  const auto zipPackage = [&](const std::string& content) {
    return TestPackage{
        .filename = "bad.zip", .content = content, .name = "Bad", .filetype = kZipType, .upsize = data.size()};
  };
  const auto entry = [&](const std::string& name) { return zipPackage(ZipOf({{name, data}})); };
  TestPackage wrongPassword = zipPackage(secret);
  wrongPassword.password = "wrong";
  const BadPackage cases[] = {
      {"half an archive", zipPackage(zip.substr(0, zip.size() / 2)), L"[ERROR] Unable to open zip file"},
      {"a page that calls itself an archive", zipPackage("<html></html>"), L"[ERROR] Unable to open zip file"},
      {"a wrong password", wrongPassword, L"[ERROR] Unable to open file (zip)"},
      {"no password", zipPackage(secret), L"[ERROR] Unable to open file (zip)"},
      {"a name that climbs", entry("../../stray.bin"), L"[ERROR] Unsafe entry name (zip) (..\\..\\stray.bin)"},
      {"a name that climbs later", entry("a/../../stray.bin"),
       L"[ERROR] Unsafe entry name (zip) (a\\..\\..\\stray.bin)"},
      {"a name from the root", entry("/stray.bin"), L"[ERROR] Unsafe entry name (zip) (\\stray.bin)"},
      {"a name with a drive", entry("C:/stray.bin"), L"[ERROR] Unsafe entry name (zip) (C:\\stray.bin)"},
      {"a name on another machine", entry("//localhost/C$/stray.bin"),
       L"[ERROR] Unsafe entry name (zip) (\\\\localhost\\C$\\stray.bin)"},
      {"a device", entry("nul.txt"), L"[ERROR] Unsafe entry name (zip) (nul.txt)"},
      {"a stream of a file", entry("data.bin:stray"), L"[ERROR] Unsafe entry name (zip) (data.bin:stray)"},
  };
  for (const BadPackage& bad : cases) {
    SCOPED_TRACE(bad.what);
    server_.reset();
    StartServer();
    DeleteFileW(TempPath(L"manifest.xml").c_str());
    Offer({bad.package});
    Start(L"install:bad.zip source:main");
    const InstallerBox box = ExpectBox();
    ExpectInText(box.text, L"There was an error during installation\n\nPackage: bad.zip");
    ExpectLog(bad.logged);
    AnswerBox(box, IDNO);
    ExpectEnd();
    EXPECT_EQ(FilesBelow(games_.Path()), std::vector<std::wstring>{});
    EXPECT_FALSE(PathExists(JoinPath(ParentFolder(games_.Path()), L"stray.bin")));
    EXPECT_FALSE(PathExists(TargetPath(L"stray.bin")));
    EXPECT_FALSE(PathExists(L"C:\\stray.bin"));
    ExpectInText(Utf8ToWide(server_->Requests().back().body), L"\r\npackage=bad.zip&type=extract&error=");
    Close();
    ExpectExit();
  }
}

struct BadDisk {
  const char* what;
  const wchar_t* folder;
  const wchar_t* error;
};

TEST_F(BadInput, DisksThatCantTakeThePackage) {
  if (!IsDirectory(L"C:\\full")) GTEST_SKIP() << "no such disks here";
  const TestPackage package{.filename = "a.dat", .content = TestBytes(3'000'000), .name = "N"};
  const BadDisk cases[] = {{"full", L"C:\\full", L"\n\nError code: 112\n"},
                           {"locked", L"C:\\locked", L"\n\nError code: 5\n"}};
  for (const BadDisk& disk : cases) {
    SCOPED_TRACE(disk.what);
    Offer({package});
    SetFolder(L"LastInstallPath", disk.folder);
    Start(L"install:a.dat source:main");
    const InstallerBox box = ExpectBox();
    ExpectInText(box.text, L"There was an error during installation\n\nPackage: a.dat");
    ExpectInText(box.text, disk.error);
    AnswerBox(box, IDNO);
    ExpectEnd();
    Close();
    ExpectExit();
  }
}

TEST_F(BadInput, AFullDiskEndsADownloadWithItsError) {
  if (!IsDirectory(L"C:\\full")) GTEST_SKIP() << "no such disk here";
  Offer({{.filename = "a.dat", .content = TestBytes(3'000'000), .name = "N"}});
  SetFolder(L"LastTmpPath", L"C:\\full");
  Start(L"install:a.dat source:main");
  const InstallerBox box = ExpectBox();
  ExpectInText(box.text, L"There was an error during download\n\nPackage: a.dat\n\nError code: 112\n");
  ExpectLog(L"Error code: 112");
  AnswerBox(box, IDNO);
  Close();
  ExpectExit();
}

}  // namespace
