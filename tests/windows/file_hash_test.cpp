#include "net/file_hash.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <vector>

#include "support/temp_folder.h"
#include "system/handles.h"

namespace {

constexpr char kMd5OfNothing[] = "d41d8cd98f00b204e9800998ecf8427e";

// What the callback saw, and what it does: it cancels in the call of this number (counted from 0).
std::vector<HashProgress> seen;
size_t cancelInCall;

void Watch(HashProgress* progress) {
  progress->cancel = seen.size() == cancelInCall;
  seen.push_back(*progress);
}

class FileHash : public testing::Test {
 protected:
  FileHash() {
    seen.clear();
    cancelInCall = SIZE_MAX;
  }

  TempFolder folder;
  const std::wstring file = folder / L"file";
};

}  // namespace

TEST_F(FileHash, GivesTheDigestAsText) {
  struct Case {
    std::string content, md5;
  };
  const Case cases[] = {
      {"", kMd5OfNothing},
      {"abc", "900150983cd24fb0d6963f7d28e17f72"},
      {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
      {std::string(4096, 'a'), "21a199c53f422a380e20b162fb6ebe9c"},
      {std::string(1'000'000, 'a'), "7707d6ae4e027c70eea2a935c2296f21"},
  };
  for (const Case& c : cases) {
    WriteTestFile(file, c.content);
    EXPECT_EQ(ComputeFileMd5(file, nullptr), c.md5) << c.content.size() << " bytes";
  }
}

TEST_F(FileHash, ReportsEachChunk) {
  WriteTestFile(file, std::string(10000, 'x'));
  EXPECT_EQ(ComputeFileMd5(file, &Watch).size(), 32u);
  const std::vector<std::pair<uint64_t, uint32_t>> expected = {{0, 0}, {4096, 40}, {8192, 81}, {10000, 100}};
  ASSERT_EQ(seen.size(), expected.size());
  for (size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(seen[i].processed, expected[i].first);
    EXPECT_EQ(seen[i].percent, expected[i].second);
  }
}

TEST_F(FileHash, CancelGivesNothingAndLetsGoOfTheFile) {
  WriteTestFile(file, std::string(10000, 'x'));
  for (const size_t call : {0u, 1u, 3u}) {
    seen.clear();
    cancelInCall = call;
    EXPECT_EQ(ComputeFileMd5(file, &Watch), "");
    EXPECT_EQ(seen.size(), call + 1);
  }
  EXPECT_TRUE(DeleteFileW(file.c_str()));
}

TEST_F(FileHash, NothingForAFileThatCannotBeRead) {
  EXPECT_EQ(ComputeFileMd5(folder / L"missing", &Watch), "");
  EXPECT_EQ(seen.size(), 1u);
  EXPECT_EQ(ComputeFileMd5(folder.Path(), nullptr), "");
  WriteTestFile(file, "abc");
  const FileHandle writer(
      CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
  ASSERT_TRUE(writer);
  EXPECT_EQ(ComputeFileMd5(file, nullptr), "");
}
