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
  percentages.clear();
  WriteTestFile(file, std::string(10'000, 'a'));
  EXPECT_EQ(ComputeFileMd5(file, nullptr), "0d0c9c4db6953fee9e03f528cafd7d3e");
  EXPECT_EQ(ComputeFileMd5(file, CancelAfter81Percent), "");
  EXPECT_EQ(percentages, "0 40 81 ");
  const FileHandle writer(
      CreateFileW(file.c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
  EXPECT_EQ(ComputeFileMd5(file, nullptr), "") << "another program is still writing it";
}
