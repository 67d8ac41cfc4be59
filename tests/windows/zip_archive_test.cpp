#include "install/zip_archive.h"

#include <gtest/gtest.h>

#include "support/temp_folder.h"
#include "support/zip_builder.h"

namespace {

std::string ReadToEnd(ZipArchive& archive) {
  std::string content;
  char chunk[1000];
  int32_t count;
  while ((count = archive.ReadEntry(chunk, sizeof chunk)) > 0) content.append(chunk, static_cast<size_t>(count));
  return content;
}

}  // namespace

TEST(ZipArchive, GivesEveryEntryInOrder) {
  const std::string secret = TestBytes(50'000, 7), password = "p\xE4ss w\xFCrd";
  const std::vector<TestEntry> entries = {
      {"folder/deflated.bin", TestBytes(100'000)},
      {.name = "stored.bin", .content = TestBytes(70'001, 2), .stored = true},
      {"secret " + std::string(300, 'n'), secret, password},
      {.name = "secret and stored", .content = secret, .password = password, .stored = true},
      {.name = "secret of a stream", .content = secret, .password = password, .sizesFollow = true},
  };
  const TempFolder folder;
  BuildZip(folder / L"\u0416.zip", entries);
  ZipArchive archive;
  ASSERT_EQ(archive.Open(folder / L"\u0416.zip"), 0u);
  int32_t moved = archive.GoToFirstEntry();
  for (const TestEntry& expected : entries) {
    ASSERT_EQ(moved, 0);
    EXPECT_EQ(archive.OpenEntry(""), expected.password.empty() ? 0 : kZipWrongPassword) << expected.name;
    EXPECT_EQ(archive.OpenEntry(password), 0) << expected.name;
    ZipEntry entry;
    EXPECT_EQ(archive.GetEntryInfo(entry), 0);
    EXPECT_EQ(entry.name, expected.name);
    EXPECT_EQ(entry.size, expected.content.size());
    EXPECT_TRUE(ReadToEnd(archive) == expected.content) << expected.name;
    EXPECT_EQ(archive.CloseEntry(), 0);
    moved = archive.GoToNextEntry();
  }
  EXPECT_EQ(moved, kZipEndOfEntries);
}
