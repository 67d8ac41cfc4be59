#include "install/zip_extraction.h"

#include <windows.h>

#include "support/placement_fixture.h"
#include "support/text_recorder.h"
#include "support/zip_builder.h"
#include "system/files.h"
#include "system/handles.h"
#include "system/text.h"

namespace {

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

  const InstallPageControls& page_ = window_.Installation();
};

TEST_F(ZipExtractionTest, UnpacksOverWhatIsThereAndShowsEveryPercentageOnce) {
  Pack({{"models/", ""}, {"models/deep/gta3.img", TestBytes(12'288)}, {"a.exe", "new program"}, {"empty.txt", ""}});
  run_.upsizeDone = 1'000;
  run_.upsizeTotal = 20'000;
  WriteTestFile(InTarget(L"a.exe"), "the old program, which is longer");
  const TextRecorder label(window_, page_.totalDetailLabel);
  EXPECT_TRUE(Extract().ok);
  EXPECT_TRUE(ReadTestFile(InTarget(L"models\\deep\\gta3.img")) == TestBytes(12'288));
  EXPECT_EQ(ReadTestFile(InTarget(L"a.exe")), "new program");
  EXPECT_FALSE(PathExists(InTarget(L"empty.txt")));
  const std::wstring image = L"Extracting: models\\deep\\gta3.img";
  EXPECT_EQ(label.Texts(), (Lines{L"Extracting", image + L" (0%)", image + L" (33%)", image + L" (66%)",
                                  image + L" (100%)", L"Extracting: a.exe (0%)", L"Extracting: a.exe (100%)"}));
  EXPECT_EQ(PositionOf(page_.totalProgress), (1'000 + 12'299) * 1000 / 20'000);
  EXPECT_EQ(window_.LogLines(), (Lines{image, L"Extracting: a.exe", L"Extraction complete (12299 / 12299)"}));
}

TEST_F(ZipExtractionTest, IsCompleteFrom99PercentOn) {
  struct Case {
    uint32_t content;
    int64_t upsize;
    uint32_t percentage;
  };
  for (const Case& c : {Case{1000, 1000, 100}, Case{990, 1000, 99}, Case{989, 1000, 98}, Case{1500, 1000, 150},
                        Case{7, 0, 100}, Case{1, INT64_MAX, 0}}) {
    Pack({{"file.bin", std::string(c.content, 'x')}});
    package_.upsize = c.upsize;
    EXPECT_EQ(Extract().ok, c.percentage >= 99) << c.content << " of " << c.upsize;
    EXPECT_EQ(run_.packageStats["pack.bin"].extracted, c.percentage) << c.content << " of " << c.upsize;
  }
  EXPECT_EQ(run_.errorRecords, IncompleteExtractionRecord("pack.bin", 0, 0, 989, 1000) +
                                   IncompleteExtractionRecord("pack.bin", 0, 0, 1, INT64_MAX));
}

TEST_F(ZipExtractionTest, WhatIsSkippedOrSpoiltDoesNotCount) {
  Pack({{"good.txt", "good"}, {.name = "bad.txt", .content = "some content", .stored = true}, {"../\nup.txt", "bad"}});
  std::string bytes = ReadTestFile(packagePath_);
  ASSERT_TRUE(ReplaceFirst(bytes, "some content", "sOme content"));
  WriteTestFile(packagePath_, bytes);
  EXPECT_EQ(Extract().error, ERROR_CRC);
  EXPECT_EQ(window_.LogLines(),
            (Lines{L"Extracting: good.txt", L"Extracting: bad.txt", L"[ERROR] Wrong content (zip) (bad.txt)",
                   L"[ERROR] Unsafe entry name (zip) (..\\?up.txt)", L"Extraction complete (4 / 19)"}));
  package_.upsize = 0;  // even if nothing is announced
  EXPECT_FALSE(Extract().ok);
}

TEST_F(ZipExtractionTest, TakesAFileInUseOfTheSameSizeAsInPlace) {
  const std::wstring game = InTarget(L"game.exe");
  WriteTestFile(game, "RUNNING GAME");
  const FileHandle held(CreateFileW(game.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
  Pack({{"game.exe", "running game"}});
  EXPECT_TRUE(Extract().ok);
  EXPECT_EQ(PositionOf(page_.totalProgress), kProgressRange);
  Pack({{"game.exe", "of another size"}});
  EXPECT_EQ(Extract().error, ERROR_SHARING_VIOLATION);
  EXPECT_EQ(window_.LogLines().at(3), L"[ERROR] Invalid zip handle (32) (game.exe)");
}

TEST_F(ZipExtractionTest, AFullDiskIsTold) {
  if (!FileHandle(CreateFileW(L"Z:\\dev\\full", GENERIC_WRITE, FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr))) {
    GTEST_SKIP() << "needs a device that is always full";
  }
  Pack({{"full", TestBytes(10'000)}});
  EXPECT_EQ(ExtractZip(run_, package_, L"Z:\\dev").error, ERROR_DISK_FULL);
}

TEST_F(ZipExtractionTest, CancellingStopsAfterTheChunk) {
  Pack({{"big.bin", TestBytes(40'960)}});
  const TextRecorder label(window_, page_.totalDetailLabel, [](const std::wstring& text) {
    if (text.ends_with(L"(50%)")) app.cancelRequested = true;
  });
  EXPECT_FALSE(Extract().ok);
  // The label is set after a chunk; the next chunk is the last.
  EXPECT_EQ(FileSize(InTarget(L"big.bin")), 6u * 4096);
}

}  // namespace
