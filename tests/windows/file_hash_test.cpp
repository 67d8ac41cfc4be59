#include "net/file_hash.h"

#include <gtest/gtest.h>

#include "support/temp_folder.h"
#include "system/handles.h"

static std::string percentages;
static void CancelAfter81Percent(HashProgress* progress) {
  percentages += std::to_string(progress->percent) + " ";
  progress->cancel = progress->percent == 81;
}

TEST(FileHash, IsToldWhenTheWholeFileWasRead) {
  const TempFolder folder;
  const std::wstring file = folder / L"file";
  for (const auto& [count, md5] : {std::pair(0, "d41d8cd98f00b204e9800998ecf8427e"),
                                   {4096, "21a199c53f422a380e20b162fb6ebe9c"},
                                   {10'000, "0d0c9c4db6953fee9e03f528cafd7d3e"}}) {
    WriteTestFile(file, std::string(static_cast<size_t>(count), 'a'));
    EXPECT_EQ(ComputeFileMd5(file, nullptr), md5);
  }
  EXPECT_EQ(ComputeFileMd5(file, CancelAfter81Percent), "");
  EXPECT_EQ(percentages, "0 40 81 ");
  const FileHandle writer(
      CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
  EXPECT_EQ(ComputeFileMd5(file, nullptr), "") << "another program is still writing it";
}
