#include "net/file_hash.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/temp_folder.h"
#include "system/handles.h"

static std::vector<uint32_t> percentages;
static bool cancelHalfway;

static void Watch(HashProgress* progress) {
  percentages.push_back(progress->percent);
  progress->cancel = cancelHalfway && progress->processed == 8192;
}

TEST(FileHash, IsToldWhenTheWholeFileWasRead) {
  const TempFolder folder;
  const std::wstring file = folder / L"file";
  for (const auto& [count, md5] : {std::pair(0, "d41d8cd98f00b204e9800998ecf8427e"),
                                   {4096, "21a199c53f422a380e20b162fb6ebe9c"},
                                   {1'000'000, "7707d6ae4e027c70eea2a935c2296f21"}}) {
    WriteTestFile(file, std::string(static_cast<size_t>(count), 'a'));
    EXPECT_EQ(ComputeFileMd5(file, nullptr), md5);
  }
  WriteTestFile(file, std::string(10000, 'x'));
  EXPECT_EQ(ComputeFileMd5(file, Watch).size(), 32u);
  EXPECT_EQ(percentages, (std::vector<uint32_t>{0, 40, 81, 100}));
  cancelHalfway = true;
  EXPECT_EQ(ComputeFileMd5(file, Watch), "");
  EXPECT_EQ(percentages.size(), 7u);
  const FileHandle writer(
      CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
  EXPECT_EQ(ComputeFileMd5(file, nullptr), "") << "another program is still writing it";
}
