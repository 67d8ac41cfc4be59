#include "ui/message_boxes.h"

#include "core/permissions.h"
#include "net/error_text.h"
#include "support/box_recorder.h"
#include "support/shell_recorder.h"

TEST(RepairPermissions, GrantsFoldersToUserAndUsersGroup) {
  EXPECT_EQ(BuildRepairParameters(L"C:\\Data", L"Ann"),
            L"/c icacls \"C:\\Data\" /grant:r Ann:(F) & icacls \"C:\\Data\\Zendora\" /grant:r "
            L"*S-1-5-32-545:(OI)(CI)(F) /T /grant:r Ann:(OI)(CI)(F) /T");
}

// Games look for their files in the folder that they are started in, and the program may end right after.
TEST(RunProcess, StartsAProgramInItsFolder) {
  const ShellRecorder shell;
  EXPECT_TRUE(RunProcess(false, false, L"C:\\Games\\Play\\play.exe", L"a b"));
  const RecordedStart& start = shell.Starts().at(0);
  EXPECT_EQ(start.verb, L"open");
  EXPECT_EQ(start.parameters, L"a b");
  EXPECT_EQ(start.folder, L"C:\\Games\\Play");
  EXPECT_TRUE(start.flags & SEE_MASK_NOASYNC);
}

// A person who refused the consent prompt must not get the program without elevation instead.
TEST(RunProcess, RefusedElevationIsTold) {
  const ShellRecorder shell(ERROR_CANCELLED);
  const BoxRecorder boxes({IDOK});
  EXPECT_FALSE(RunProcess(true, true, L"setup.exe", L"a b"));
  EXPECT_EQ(boxes.Boxes().at(0).text, L"Error: 1223\n" + GetErrorText(ERROR_CANCELLED) + L"\nFile: setup.exe\n\n" +
                                          L"Please start Zendora Installer with Administrator privileges");
}
