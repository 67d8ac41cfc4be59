#include "app/about_dialog.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "app/context.h"
#include "app/localization.h"
#include "support/opened_dialog.h"
#include "support/shell_recorder.h"
#include "support/test_window.h"

namespace {

class AboutDialogTest : public testing::Test {
 protected:
  TestWindow window_{CreateProgramWindow};
};

TEST_F(AboutDialogTest, TellsWhatTheProgramIs) {
  const struct {
    uint32_t language;
    const wchar_t *title, *version;
  } cases[] = {{LANG_ENGLISH, L"Help", L"Version: 4.0.8"},
               {LANG_GERMAN, L"Hilfe", L"Version: 4.0.8"},
               {LANG_POLISH, L"Pomoc", L"Wersja: 4.0.8"}};
  for (const auto& test : cases) {
    window_.Run([&] { SetThreadLanguage(test.language); });
    const OpenedDialog dialog(window_, COMMAND_ABOUT);
    EXPECT_EQ(TextOf(dialog.Window()), test.title);
    EXPECT_EQ(dialog.Text(ABOUT_VERSION), test.version);
    EXPECT_EQ(dialog.Text(ABOUT_TITLE), L"Zendora Installer");
    EXPECT_EQ(dialog.Text(ABOUT_LIBRARIES), L"Third-party software:\ntinyxml2\nminizip");
    EXPECT_EQ(dialog.Text(IDOK), L"OK");
  }
}

TEST_F(AboutDialogTest, LinksOpenWhatTheyShow) {
  const ShellRecorder shell;
  const OpenedDialog dialog(window_, COMMAND_ABOUT);
  for (int link = ABOUT_FIRST_LINK; link <= ABOUT_LAST_LINK; ++link) {
    dialog.Click(link);
    const ShellStart& start = shell.Starts().back();
    EXPECT_EQ(start.verb, L"open");
    EXPECT_EQ(start.file, L"https://" + dialog.Text(link));
    EXPECT_GT(dialog.Text(link).size(), 0u);
    EXPECT_EQ(start.parameters, L"");
    EXPECT_EQ(start.showCommand, SW_SHOWNORMAL);
  }
  EXPECT_EQ(shell.Starts().size(), 4u);
  EXPECT_TRUE(IsWindowVisible(dialog.Window()));
}

}  // namespace
