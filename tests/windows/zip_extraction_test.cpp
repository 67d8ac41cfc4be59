#include "install/zip_extraction.h"

#include <windows.h>

#include "install/zip_archive.h"
#include "support/placement_fixture.h"
#include "support/text_recorder.h"
#include "support/zip_builder.h"
#include "system/files.h"
#include "system/handles.h"
#include "system/path_names.h"

namespace {

using Lines = std::vector<std::wstring>;

class ZipExtractionTest : public PlacementFixture {
 protected:
  // Makes the package an archive of these entries, announced with the size that they unpack to.
  void Pack(const std::vector<TestEntry>& entries) {
    BuildZip(packagePath_, entries);
    package_.upsize = 0;
    for (const TestEntry& entry : entries) package_.upsize += static_cast<int64_t>(entry.content.size());
    run_.upsizeTotal = static_cast<uint64_t>(package_.upsize);
  }
  PlacementResult Extract() { return ExtractZip(run_, package_, target_); }
  std::wstring InTarget(const wchar_t* name) const { return JoinPath(target_, name); }
  std::string Incomplete(uint32_t error, int32_t zipResult, uint64_t written) const {
    return IncompleteExtractionRecord("pack.bin", error, zipResult, written, static_cast<uint64_t>(package_.upsize));
  }
};

TEST_F(ZipExtractionTest, UnpacksOverWhatIsThere) {
  const std::string image = TestBytes(20'000);
  Pack({{"models/", ""},
        {"models/deep/gta3.img", image},
        {"game.exe", "new program"},
        {"empty.txt", ""},
        {"caf\xC3\xA9.txt", "name in bytes"}});
  WriteTestFile(InTarget(L"game.exe"), "the old program, which is longer");
  WriteTestFile(InTarget(L"other.txt"), "left alone");

  const PlacementResult result = Extract();
  EXPECT_TRUE(result.ok);
  EXPECT_EQ(result.error, 0u);
  EXPECT_TRUE(ReadTestFile(InTarget(L"models\\deep\\gta3.img")) == image);
  EXPECT_EQ(ReadTestFile(InTarget(L"game.exe")), "new program");
  EXPECT_EQ(ReadTestFile(InTarget(L"caf\u00C3\u00A9.txt")), "name in bytes");
  EXPECT_EQ(ReadTestFile(InTarget(L"other.txt")), "left alone");
  EXPECT_FALSE(PathExists(InTarget(L"empty.txt")));
  EXPECT_EQ(window_.LogLines(), (Lines{L"Extracting: models\\deep\\gta3.img", L"Extracting: game.exe",
                                       L"Extracting: caf\u00C3\u00A9.txt", L"Extraction complete (20024 / 20024)"}));
  EXPECT_EQ(Stats().extracted, 100u);
  EXPECT_EQ(Stats().exterr, 0u);
  EXPECT_EQ(run_.errorRecords, "");
}

TEST_F(ZipExtractionTest, ShowsEveryPercentageOnce) {
  Pack({{"a/big.bin", TestBytes(4096 * 3)}, {"small.txt", "x"}});
  run_.upsizeDone = 1'000;
  run_.upsizeTotal = 20'000;
  Lines expected = {L"Extracting"};
  for (const wchar_t* shown : {L"0%", L"33%", L"66%", L"100%"}) {
    expected.push_back(std::wstring(L"Extracting: a\\big.bin (") + shown + L")");
  }
  expected.insert(expected.end(), {L"Extracting: small.txt (0%)", L"Extracting: small.txt (100%)"});
  const TextRecorder label(window_, Page().totalDetailLabel);
  EXPECT_TRUE(Extract().ok);
  EXPECT_EQ(label.Texts(), expected);
  EXPECT_EQ(PositionOf(Page().totalProgress), (1'000 + 12'289) * 1000 / 20'000);

  // 4096 bytes are less than a percent of this one: the label stands still for most of them.
  Pack({{"big.bin", TestBytes(4096 * 1000)}});
  const TextRecorder again(window_, Page().totalDetailLabel);
  EXPECT_TRUE(Extract().ok);
  EXPECT_EQ(again.Texts().size(), 1u + 101u);
}

TEST_F(ZipExtractionTest, IsCompleteFrom99PercentOn) {
  struct Case {
    size_t content;
    int64_t upsize;
    bool complete;
    uint32_t extracted;
  };
  const Case cases[] = {
      {1000, 1000, true, 100}, {995, 1000, true, 99},    {990, 1000, true, 99}, {989, 1000, false, 98},
      {1500, 1000, true, 150}, {0, 1000, false, 0},      {0, 0, true, 100},     {7, 0, true, 100},
      {7, -5, true, 100},      {1, INT64_MAX, false, 0},
  };
  for (const Case& c : cases) {
    Pack({{"folder/", ""}, {"file.bin", std::string(c.content, 'x')}});
    package_.upsize = c.upsize;
    run_.errorRecords.clear();
    const PlacementResult result = Extract();
    EXPECT_EQ(result.ok, c.complete) << c.content << " of " << c.upsize;
    EXPECT_EQ(Stats().extracted, c.extracted) << c.content << " of " << c.upsize;
    EXPECT_EQ(run_.errorRecords, c.complete ? "" : Incomplete(0, 0, c.content));
  }
  EXPECT_EQ(window_.LogLines()[3], L"Extraction complete (995 / 1000)");
}

TEST_F(ZipExtractionTest, ReportsArchivesThatCannotBeOpened) {
  EXPECT_EQ(Extract().error, ERROR_INVALID_DATA);
  DeleteFileW(packagePath_.c_str());
  const PlacementResult missing = Extract();
  EXPECT_FALSE(missing.ok);
  EXPECT_EQ(missing.error, ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(run_.errorRecords, ArchiveUnreadableRecord("pack.bin", ERROR_INVALID_DATA) +
                                   ArchiveUnreadableRecord("pack.bin", ERROR_FILE_NOT_FOUND));
  EXPECT_EQ(window_.LogLines(), Lines(2, L"[ERROR] Unable to open zip file"));
}

TEST_F(ZipExtractionTest, UsesThePasswordOfThePackage) {
  const std::vector<TestEntry> entries = {{"plain.txt", "plain"}, {"secret.txt", "secret content", "key"}};
  package_.password = "key";
  Pack(entries);
  EXPECT_TRUE(Extract().ok);
  EXPECT_EQ(ReadTestFile(InTarget(L"secret.txt")), "secret content");

  package_.password = "yek";
  Pack(entries);
  WriteTestFile(InTarget(L"secret.txt"), "what was there");
  EXPECT_FALSE(Extract().ok);
  EXPECT_EQ(ReadTestFile(InTarget(L"plain.txt")), "plain");
  EXPECT_EQ(ReadTestFile(InTarget(L"secret.txt")), "what was there");
  EXPECT_EQ(ErrorLines(), Lines{L"[ERROR] Unable to open file (zip)"});
  EXPECT_EQ(run_.errorRecords, Incomplete(0, kZipWrongPassword, 5));
}

TEST_F(ZipExtractionTest, WritesNothingOutsideTheTarget) {
  const char* const names[] = {"../up.txt",       "a/../../up.txt", "/root.txt", "C:/drive.txt",
                               "file.txt:stream", "nul.txt",        "dot./x"};
  std::vector<TestEntry> entries = {{"../", ""}, {"good.txt", "good"}};
  Lines expected;
  for (const char* name : names) {
    entries.push_back({name, "bad"});
    std::wstring path(name, name + strlen(name));
    std::replace(path.begin(), path.end(), L'/', L'\\');
    expected.push_back(L"[ERROR] Unsafe entry name (zip) (" + path + L")");
  }
  Pack(entries);
  EXPECT_FALSE(Extract().ok);
  EXPECT_EQ(ErrorLines(), expected);
  EXPECT_EQ(ReadTestFile(InTarget(L"good.txt")), "good");
  EXPECT_FALSE(PathExists(folder_ / L"up.txt"));
  EXPECT_FALSE(PathExists(L"C:\\root.txt") || PathExists(L"C:\\drive.txt"));
  EXPECT_EQ(run_.errorRecords, Incomplete(0, 0, 4));

  package_.upsize = 0;  // even if nothing is announced
  EXPECT_FALSE(Extract().ok);
  EXPECT_EQ(Stats().extracted, 0u);
}

TEST_F(ZipExtractionTest, TakesAFileInUseOfTheSameSizeAsInPlace) {
  Pack({{"game.exe", "running game"}, {"rest.txt", "the rest"}});
  package_.upsize = 1'000;
  WriteTestFile(InTarget(L"game.exe"), "RUNNING GAME");
  WriteTestFile(InTarget(L"rest.txt"), "of another size");
  const auto hold = [](const std::wstring& path) {
    return FileHandle(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
  };
  const FileHandle game = hold(InTarget(L"game.exe")), rest = hold(InTarget(L"rest.txt"));
  ASSERT_TRUE(game && rest);

  const TextRecorder label(window_, Page().totalDetailLabel);
  const PlacementResult result = Extract();
  EXPECT_TRUE(result.ok);
  EXPECT_EQ(result.error, 0u);
  EXPECT_EQ(label.Texts()[2], L"Extracting: game.exe (100%)");
  EXPECT_EQ(PositionOf(Page().totalProgress), kProgressRange);
  EXPECT_EQ(ErrorLines(), Lines{L"[ERROR] Invalid zip handle (32) (rest.txt)"});
  EXPECT_EQ(Stats().exterr, ERROR_SHARING_VIOLATION);
  EXPECT_EQ(Stats().extracted, 100u);
}

TEST_F(ZipExtractionTest, TellsWhyAFileCannotBeCreated) {
  const std::string longName = std::string(120, 'a') + "/" + std::string(140, 'b');
  Pack({{"folder", "a folder of this name exists"},
        {"file/entry", "a file of its folder's name exists"},
        {longName, "x"}});
  WriteTestFile(InTarget(L"folder\\x"), "");
  WriteTestFile(InTarget(L"file"), "");
  const PlacementResult result = Extract();
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(result.error, ERROR_FILENAME_EXCED_RANGE);
  EXPECT_EQ(Stats().exterr, ERROR_FILENAME_EXCED_RANGE);
  EXPECT_EQ(ErrorLines(),
            (Lines{L"[ERROR] Invalid zip handle (5) (folder)", L"[ERROR] Invalid zip handle (183) (file\\entry)",
                   L"[ERROR] Invalid zip handle (206) (" + std::wstring(120, L'a') + L"\\" + std::wstring(140, L'b') +
                       L")"}));
  EXPECT_EQ(run_.errorRecords, Incomplete(ERROR_FILENAME_EXCED_RANGE, 0, 0));
}

TEST_F(ZipExtractionTest, AFullDiskIsTold) {
  const std::wstring devices = L"Z:\\dev";
  if (!FileHandle(CreateFileW(L"Z:\\dev\\full", GENERIC_WRITE, FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr))) {
    GTEST_SKIP() << "needs a device that is always full";
  }
  Pack({{"full", TestBytes(10'000)}});
  const PlacementResult result = ExtractZip(run_, package_, devices);
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(result.error, ERROR_DISK_FULL);
  EXPECT_EQ(Stats().exterr, ERROR_DISK_FULL);
  EXPECT_EQ(run_.errorRecords, Incomplete(ERROR_DISK_FULL, 0, 0));
}

TEST_F(ZipExtractionTest, ContentThatIsNotWhatWasPackedDoesNotCount) {
  Pack({{"good.txt", "good"}, {.name = "bad.txt", .content = "some content", .stored = true}});
  PatchFile(packagePath_, "some content", "sOme content");
  EXPECT_FALSE(Extract().ok);
  EXPECT_EQ(ErrorLines(), Lines{L"[ERROR] Wrong content (zip) (bad.txt)"});
  EXPECT_EQ(run_.errorRecords, Incomplete(0, 0, 4));
}

TEST_F(ZipExtractionTest, TheLastOfSeveralEntriesOfOneNameStays) {
  Pack({{"file.txt", "the first, longer one"}, {"file.txt", "the second"}});
  EXPECT_TRUE(Extract().ok);
  EXPECT_EQ(ReadTestFile(InTarget(L"file.txt")), "the second");
}

TEST_F(ZipExtractionTest, CancellingStopsAfterTheChunk) {
  Pack({{"big.bin", TestBytes(40'960)}, {"next.txt", "never written"}});
  const TextRecorder label(window_, Page().totalDetailLabel, [](const std::wstring& text) {
    if (text.ends_with(L"(50%)")) app.cancelRequested = true;
  });
  EXPECT_FALSE(Extract().ok);
  // The label is set after a chunk; the next chunk is the last.
  EXPECT_EQ(FileSize(InTarget(L"big.bin")), 6u * 4096);
  EXPECT_FALSE(PathExists(InTarget(L"next.txt")));
  EXPECT_EQ(window_.LogLines(), (Lines{L"Extracting: big.bin", L"Extraction complete (24576 / 40973)"}));
  EXPECT_EQ(Stats().extracted, 59u);
}

}  // namespace
