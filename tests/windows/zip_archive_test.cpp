#include "install/zip_archive.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "support/temp_folder.h"
#include "support/zip_builder.h"
#include "system/handles.h"

namespace {

// What reading an archive's current entry gives.
struct EntryRead {
  int32_t opened = 0, lastRead = 0, closed = 0;
  std::string content;
};

EntryRead Read(ZipArchive& archive, const std::string& password) {
  EntryRead read;
  read.opened = archive.OpenEntry(password);
  if (read.opened != 0) return read;
  char chunk[1000];
  while ((read.lastRead = archive.ReadEntry(chunk, sizeof chunk)) > 0) {
    read.content.append(chunk, static_cast<size_t>(read.lastRead));
  }
  read.closed = archive.CloseEntry();
  return read;
}

// The first entry of an archive of one.
EntryRead ReadOnly(const std::wstring& path, const std::string& password = "") {
  ZipArchive archive;
  EXPECT_EQ(archive.Open(path), 0u);
  EXPECT_EQ(archive.GoToFirstEntry(), 0);
  return Read(archive, password);
}

// The flags and the method as both headers of an entry have them, right behind the version.
std::string Headers(const char* flagsAndMethod) { return std::string(flagsAndMethod, 4); }

class ZipArchiveTest : public testing::Test {
 protected:
  TempFolder folder_;
  const std::wstring path_ = folder_ / L"\u0416 archive.zip";
};

TEST_F(ZipArchiveTest, GivesEveryEntryInOrder) {
  const std::vector<TestEntry> entries = {
      {"folder/", ""},
      {"folder/deflated.bin", TestBytes(100'000)},
      {.name = "stored.bin", .content = TestBytes(70'001, 2), .stored = true},
      {"empty.txt", ""},
      {std::string(300, 'n'), "long name"},
      {"stored.bin", "a second one of the same name"},
  };
  BuildZip(path_, entries);

  ZipArchive archive;
  ASSERT_EQ(archive.Open(path_), 0u);
  int32_t moved = archive.GoToFirstEntry();
  for (const TestEntry& expected : entries) {
    ASSERT_EQ(moved, 0);
    const EntryRead read = Read(archive, "passwords are for encrypted entries only");
    ZipEntry entry;
    EXPECT_EQ(archive.GetEntryInfo(entry), 0);
    EXPECT_EQ(entry.name, expected.name);
    EXPECT_EQ(entry.size, expected.content.size());
    EXPECT_EQ(read.opened, 0);
    EXPECT_TRUE(read.content == expected.content) << expected.name;
    EXPECT_EQ(read.closed, 0);
    moved = archive.GoToNextEntry();
  }
  EXPECT_EQ(moved, kZipEndOfEntries);
}

TEST_F(ZipArchiveTest, EncryptedEntriesNeedTheirPassword) {
  const std::string content = TestBytes(50'000, 7);
  for (const bool stored : {false, true}) {
    for (const bool sizesFollow : {false, true}) {
      BuildZip(path_, {{"secret", content, "p\xE4ss w\xFCrd", stored, sizesFollow}});
      const EntryRead right = ReadOnly(path_, "p\xE4ss w\xFCrd");
      EXPECT_EQ(right.opened, 0);
      EXPECT_TRUE(right.content == content);
      EXPECT_EQ(right.closed, 0);
      EXPECT_EQ(ReadOnly(path_).opened, kZipWrongPassword);
      EXPECT_EQ(ReadOnly(path_, "password").opened, kZipWrongPassword);
    }
  }
}

TEST_F(ZipArchiveTest, PlainAndEncryptedEntriesStandTogether) {
  BuildZip(path_, {{"1", "plain"}, {"2", "hidden", "key"}, {.name = "3", .content = "plain again", .stored = true}});
  ZipArchive archive;
  ASSERT_EQ(archive.Open(path_), 0u);
  ASSERT_EQ(archive.GoToFirstEntry(), 0);
  EXPECT_EQ(Read(archive, "key").content, "plain");
  ASSERT_EQ(archive.GoToNextEntry(), 0);
  EXPECT_EQ(Read(archive, "yek").opened, kZipWrongPassword);
  EXPECT_EQ(Read(archive, "key").content, "hidden");
  ASSERT_EQ(archive.GoToNextEntry(), 0);
  EXPECT_EQ(Read(archive, "key").content, "plain again");
}

TEST_F(ZipArchiveTest, InfoCanBeReadWhileAnEncryptedEntryIsOpen) {
  BuildZip(path_, {{"secret", TestBytes(30'000), "key"}});
  ZipArchive archive;
  ASSERT_EQ(archive.Open(path_), 0u);
  ASSERT_EQ(archive.GoToFirstEntry(), 0);
  ASSERT_EQ(archive.OpenEntry("key"), 0);
  char chunk[16];
  ASSERT_EQ(archive.ReadEntry(chunk, sizeof chunk), 16);
  ZipEntry entry;
  EXPECT_EQ(archive.GetEntryInfo(entry), 0);
  EXPECT_EQ(entry.name, "secret");
  EXPECT_EQ(entry.size, 30'000u);
}

TEST_F(ZipArchiveTest, WhatCannotBeUnpackedIsNotOpened) {
  struct Case {
    const char* what;
    std::string flagsAndMethod;
  };
  const Case cases[] = {
      {"deflate64", Headers("\x00\x00\x09\x00")},
      {"bzip2", Headers("\x00\x00\x0C\x00")},
      {"AES", Headers("\x01\x00\x63\x00")},
      {"strong encryption", Headers("\x41\x00\x08\x00")},
  };
  for (const Case& c : cases) {
    BuildZip(path_, {{"entry", "some content"}});
    const std::string version("\x14\x00", 2);
    PatchFile(path_, version + Headers("\x00\x00\x08\x00"), version + c.flagsAndMethod);
    EXPECT_EQ(ReadOnly(path_, "password").opened, kZipUnreadable) << c.what;
  }
}

TEST_F(ZipArchiveTest, ChangedContentIsNoticed) {
  for (const char* password : {"", "key"}) {
    BuildZip(path_, {{"stored", "some content", password, true}});
    std::string bytes = ReadTestFile(path_);
    bytes[30 + 6 + (*password ? 12u : 0u) + 3] ^= 1;  // fixed part of the local header, name, encryption header
    WriteTestFile(path_, bytes);
    const EntryRead read = ReadOnly(path_, password);
    EXPECT_EQ(read.opened, 0);
    EXPECT_EQ(read.content.size(), 12u);
    EXPECT_EQ(read.closed, kZipWrongContent);
  }

  BuildZip(path_, {{"deflated", TestBytes(50'000)}});
  std::string bytes = ReadTestFile(path_);
  bytes.replace(38, 4, "\xFF\xFF\xFF\xFF");  // right behind the header: no block begins like this
  WriteTestFile(path_, bytes);
  EXPECT_LT(ReadOnly(path_).lastRead, 0);
}

TEST_F(ZipArchiveTest, SizesHave64Bits) {
  BuildZip(path_, {{.name = "huge", .content = "little", .claimedSize = 5'000'000'000}});
  ZipArchive archive;
  ASSERT_EQ(archive.Open(path_), 0u);
  ASSERT_EQ(archive.GoToFirstEntry(), 0);
  ZipEntry entry;
  ASSERT_EQ(archive.GetEntryInfo(entry), 0);
  EXPECT_EQ(entry.size, 5'000'000'000u);
}

TEST_F(ZipArchiveTest, AnEmptyArchiveHasNoEntries) {
  BuildZip(path_, {});
  ZipArchive archive;
  ASSERT_EQ(archive.Open(path_), 0u);
  EXPECT_EQ(archive.GoToFirstEntry(), kZipEndOfEntries);
}

TEST_F(ZipArchiveTest, FilesThatCannotBeOpenedTellWhy) {
  EXPECT_EQ(ZipArchive().Open(folder_ / L"missing.zip"), ERROR_FILE_NOT_FOUND);
  EXPECT_EQ(ZipArchive().Open(folder_ / L"no folder\\missing.zip"), ERROR_PATH_NOT_FOUND);

  WriteTestFile(path_, "This is no archive, but it is long enough to be one.");
  EXPECT_EQ(ZipArchive().Open(path_), ERROR_INVALID_DATA);
  WriteTestFile(path_, "");
  EXPECT_EQ(ZipArchive().Open(path_), ERROR_INVALID_DATA);

  const FileHandle exclusive(
      CreateFileW(path_.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  ASSERT_TRUE(exclusive);
  EXPECT_EQ(ZipArchive().Open(path_), ERROR_SHARING_VIOLATION);
}

TEST_F(ZipArchiveTest, ClosesItsFile) {
  BuildZip(path_, {{"entry", "content"}});
  {
    ZipArchive archive;
    ASSERT_EQ(archive.Open(path_), 0u);
    ASSERT_EQ(archive.GoToFirstEntry(), 0);
    ASSERT_EQ(archive.OpenEntry(""), 0);
  }
  EXPECT_TRUE(DeleteFileW(path_.c_str()));
}

}  // namespace
