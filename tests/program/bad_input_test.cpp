// What a broken or hostile site, and a full disk, may do to the program: the user is told what is wrong, nothing is
// written astray, and the program goes on.
#include <algorithm>
#include <filesystem>

#include "program/installer_test.h"
#include "system/files.h"
#include "system/path_names.h"
#include "system/text.h"

namespace {

using BadInput = InstallerTest;

bool HasFiles(const std::wstring& folder) {
  return std::ranges::any_of(std::filesystem::recursive_directory_iterator(folder),
                             [](const auto& entry) { return entry.is_regular_file(); });
}

TEST_F(BadInput, IsToldAndLeavesNothingBehind) {
  const std::string content = TestBytes(100'000), other = TestBytes(100'000, 9);
  const std::string inCapitals = "ABCDEF" + Md5Of(content).substr(6);
  const std::string zip = ZipOf({{"data.bin", content}}), halfZip = zip.substr(0, zip.size() / 2);
  const std::string secretZip = ZipOf({{"data.bin", content, "right"}});
  const std::string climbingZip = ZipOf({{"a/../../stray.bin", content}});
  const struct {
    TestPackage package;
    std::string sent;
    std::wstring logged;
  } cases[] = {
      {{.filename = "page", .content = content}, "<html>Gone</html>", L"Size mismatch (17)"},
      {{.filename = "other", .content = content}, other, L"Hash mismatch (" + WidenBytes(Md5Of(other)) + L")"},
      {{.filename = "capitals", .content = content, .md5 = inCapitals},
       content,
       L"Expected hash: " + WidenBytes(inCapitals)},
      {{.filename = "half.zip", .content = halfZip, .filetype = kZipType}, halfZip, L"[ERROR] Unable to open zip file"},
      {{.filename = "secret.zip", .content = secretZip, .filetype = kZipType, .password = "wrong"},
       secretZip,
       L"[ERROR] Unable to open file (zip)"},
      {{.filename = "climbs.zip", .content = climbingZip, .filetype = kZipType},
       climbingZip,
       L"[ERROR] Unsafe entry name (zip) (a\\..\\..\\stray.bin)"},
  };
  for (const auto& [offered, sent, logged] : cases) {
    SCOPED_TRACE(offered.filename);
    TestPackage package = offered;
    package.name = "Bad";
    package.upsize = content.size();
    Offer({package});
    server_->Answer(FilePath(package), {.body = sent});
    Start(L"install:" + WidenBytes(package.filename) + L" source:main");
    const InstallerBox box = ExpectBox(L"There was an error during ");
    EXPECT_EQ(box.caption, L"Error");
    EXPECT_TRUE(box.text.ends_with(L"\n\nWould you like to try again?"));
    ExpectLog(logged);
    AnswerBox(box, IDNO);
    // It is cancelled or finished.
    ASSERT_TRUE(WaitUntil([this] { return LabelsShow(Window(), L"Installation "); }));
    EXPECT_FALSE(HasFiles(games_.Path()));
    EXPECT_FALSE(PathExists(JoinPath(ParentFolder(games_.Path()), L"stray.bin")));
    DeleteFileW(TempPath(L"manifest.xml").c_str());
    Close();
    ExpectExit();
  }
}

TEST_F(BadInput, DisksThatCantTakeThePackageAreNamedByTheirError) {
  if (!IsDirectory(L"C:\\full")) GTEST_SKIP() << "no such disks here";
  const std::wstring games = games_.Path(), downloads = downloads_.Path();
  const std::tuple<std::wstring, std::wstring, const wchar_t*> cases[] = {
      {games, L"C:\\full", L"during download\n\nPackage: a.dat\n\nError code: 112\n"},
      {L"C:\\full", downloads, L"during installation\n\nPackage: a.dat\n\nError code: 112\n"},
      {L"C:\\locked", downloads, L"during installation\n\nPackage: a.dat\n\nError code: 5\n"},
  };
  Offer({{.filename = "a.dat", .content = TestBytes(3'000'000), .name = "N"}});
  for (const auto& [installTo, downloadTo, message] : cases) {
    SetFolder(L"LastInstallPath", installTo);
    SetFolder(L"LastTmpPath", downloadTo);
    Start(L"install:a.dat source:main");
    AnswerBox(ExpectBox(message), IDNO);
    Close();
    ExpectExit();
  }
}

}  // namespace
