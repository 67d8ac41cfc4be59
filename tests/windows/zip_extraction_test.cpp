#include "install/zip_extraction.h"

#include "support/install_scenario.h"
#include "support/text_recorder.h"
#include "support/zip_builder.h"
#include "system/text.h"

namespace {

class ZipExtractionTest : public InstallScenario {
 protected:
  // Makes the package an archive of these entries, announced with the size that they unpack to.
  void Pack(const std::vector<TestEntry>& entries) {
    BuildZip(file_, entries);
    package_.upsize = 0;
    for (const TestEntry& entry : entries) package_.upsize += static_cast<int64_t>(entry.content.size());
    run_.upsizeTotal = static_cast<uint64_t>(package_.upsize);
  }
  PlacementResult Extract() { return ExtractZip(run_, package_, target_); }

  const InstallPageControls& page_ = window_.Installation();
};

TEST_F(ZipExtractionTest, UnpacksEveryKindOfEntryOverWhatIsThere) {
  const std::string password = package_.password = "p\xE4ss w\xFCrd";
  const std::vector<TestEntry> entries = {
      {.name = "models/", .content = ""},
      {.name = "models/deep/gta3.img", .content = TestBytes(12'288)},
      {.name = "\xC3\xA9.exe", .content = "new program", .stored = true},  // no code page, not even UTF-8
      {.name = "secret", .content = TestBytes(50'000, 2), .password = password},
      {.name = "secret and stored", .content = TestBytes(9'000, 3), .password = password, .stored = true},
      {.name = "secret of a stream", .content = TestBytes(9'000, 4), .password = password, .sizesFollow = true},
  };
  Pack(entries);
  WriteTestFile(target_ + L"\\\u00C3\u00A9.exe", "the old program, which is longer");
  const TextRecorder label(window_, page_.totalDetailLabel);
  EXPECT_TRUE(Extract().ok);
  for (size_t i = 1; i < entries.size(); ++i) {
    EXPECT_EQ(ReadTestFile(target_ + L"\\" + WidenBytes(entries[i].name)), entries[i].content) << entries[i].name;
  }
  const std::wstring image = L"Extracting: models\\deep\\gta3.img (";
  EXPECT_EQ(Lines(label.Texts().begin() + 1, label.Texts().begin() + 5),
            (Lines{image + L"0%)", image + L"33%)", image + L"66%)", image + L"100%)"}));
  EXPECT_EQ(PositionOf(page_.totalProgress), kProgressRange);
  package_.password = "wrong";
  EXPECT_FALSE(Extract().ok);
}

TEST_F(ZipExtractionTest, IsCompleteFrom99PercentOn) {
  const std::tuple<size_t, int64_t, uint32_t> cases[] = {{1000, 1000, 100}, {990, 1000, 99}, {989, 1000, 98},
                                                         {1500, 1000, 150}, {7, 0, 100},     {1, INT64_MAX, 0}};
  for (const auto& [content, upsize, percentage] : cases) {
    Pack({{"file.bin", std::string(content, 'x')}});
    package_.upsize = upsize;
    EXPECT_EQ(Extract().ok, percentage >= 99) << content << " of " << upsize;
    EXPECT_EQ(run_.packageStats["fox"].extracted, percentage) << content << " of " << upsize;
  }
  EXPECT_EQ(run_.errorRecords,
            IncompleteExtractionRecord("fox", 0, 0, 989, 1000) + IncompleteExtractionRecord("fox", 0, 0, 1, INT64_MAX));
}

TEST_F(ZipExtractionTest, WhatIsSkippedOrSpoiltDoesNotCount) {
  Pack({{"good.txt", "good"}, {.name = "bad.txt", .content = "some content", .stored = true}, {"../\nup.txt", "bad"}});
  std::string bytes = ReadTestFile(file_);
  ASSERT_TRUE(ReplaceFirst(bytes, "some content", "sOme content"));
  WriteTestFile(file_, bytes);
  EXPECT_EQ(Extract().error, ERROR_CRC);
  EXPECT_EQ(window_.LogLines(),
            (Lines{L"Extracting: good.txt", L"Extracting: bad.txt", L"[ERROR] Wrong content (zip) (bad.txt)",
                   L"[ERROR] Unsafe entry name (zip) (..\\?up.txt)", L"Extraction complete (4 / 19)"}));
  package_.upsize = 0;  // even if nothing is announced
  EXPECT_FALSE(Extract().ok);
}

TEST_F(ZipExtractionTest, TakesAFileInUseOfTheSameSizeAsInPlace) {
  const std::wstring game = target_ + L"\\game.exe";
  WriteTestFile(game, "RUNNING GAME");
  const FileHandle held(CreateFileW(game.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
  Pack({{"game.exe", "running game"}});
  EXPECT_TRUE(Extract().ok);
  Pack({{"game.exe", "of another size"}});
  EXPECT_EQ(Extract().error, ERROR_SHARING_VIOLATION);
}

}  // namespace
