#include "core/permissions.h"
#include "support/shell_recorder.h"
#include "ui/message_boxes.h"

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
