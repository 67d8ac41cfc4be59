#include "install/verify_list.h"

#include <windows.h>

#include "support/box_recorder.h"
#include "support/placement_fixture.h"

namespace {

using VerifyListTest = PlacementFixture;

TEST_F(VerifyListTest, PassesWhenEverythingIsThere) {
  WriteTestFile(target_ + L"\\game.exe", "");
  WriteTestFile(target_ + L"\\models\\gta3.img", "content");
  WriteTestFile(target_ + L"\\\u00E9.txt", "");
  for (const char* verify :
       {"", "game.exe", "models", "models/gta3.img|game.exe", "|", "game.exe||models\\", "\xE9.txt"}) {
    package_.verify = verify;
    EXPECT_TRUE(CheckVerifyList(run_, package_, target_).ok) << verify;
  }
  EXPECT_EQ(run_.errorRecords, "");
}

TEST_F(VerifyListTest, StopsAtTheFirstThingMissing) {
  WriteTestFile(target_ + L"\\game.exe", "");
  package_.verify = "game.exe|lost folder/lost.dll|lost too.dll";
  const std::wstring path = target_ + L"\\lost folder/lost.dll";

  BoxRecorder recorder({IDOK});
  const PlacementResult result = CheckVerifyList(run_, package_, target_);
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(result.error, ERROR_PATH_NOT_FOUND);
  EXPECT_EQ(run_.errorRecords, VerifyFailedRecord("pack.bin", ERROR_PATH_NOT_FOUND, path));
  ASSERT_EQ(recorder.Boxes().size(), 1u);
  const RecordedBox box = recorder.Boxes()[0];
  EXPECT_EQ(box.caption, L"Error");
  EXPECT_EQ(box.text, L"Component installation failed\n\nRequired file or folder is missing:\n" + path +
                          L"\n\nThis error could be caused by other program (for example by virus or antivirus)");
  EXPECT_EQ(box.buttons, std::vector<int>{IDOK});
  EXPECT_EQ(box.owner, window_.Window());
}

TEST_F(VerifyListTest, NeedsItsTargetFolder) {
  package_.verify = "|";
  BoxRecorder recorder({IDOK});
  EXPECT_EQ(CheckVerifyList(run_, package_, target_).error, ERROR_FILE_NOT_FOUND);
}

}  // namespace
