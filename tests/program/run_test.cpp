// Installations from the first click to the last file.
#include "core/site.h"
#include "program/installer_test.h"
#include "resource.h"

namespace {

class Installation : public InstallerTest {};

TEST_F(Installation, InstallsWhatIsChecked) {
  const std::string plain = TestBytes(50'000, 1), inZip = TestBytes(300'000, 2), secret = TestBytes(120'000, 3);
  const std::vector<TestPackage> packages = {
      {.filename = "plain.dat", .content = plain, .title = "Plain", .name = "Plain", .verify = "plain.dat"},
      {.filename = "world.zip",
       .content = ZipOf({{"maps/", ""}, {"maps/city.dat", inZip}}),
       .name = "World",
       .filetype = kZipType,
       .verify = "maps|maps/city.dat",
       .upsize = inZip.size()},
      {.filename = "secret.zip",
       .content = ZipOf({{"secret.dat", secret, "open sesame"}}),
       .name = "Secret",
       .filetype = kZipType,
       .password = "open sesame",
       .upsize = secret.size()},
      {.filename = "unwanted.dat", .content = plain, .name = "Unwanted", .isDefault = false},
  };
  Offer(packages);
  Start();
  PressInstall();
  ExpectEnd();

  ExpectContent(TargetPath(L"Plain\\plain.dat"), plain);
  ExpectContent(TargetPath(L"World\\maps\\city.dat"), inZip);
  ExpectContent(TargetPath(L"Secret\\secret.dat"), secret);
  EXPECT_EQ(GetFileAttributesW(TargetPath(L"Unwanted").c_str()), INVALID_FILE_ATTRIBUTES);
  EXPECT_TRUE(server_->RequestsOf("/packages/unwanted.dat").empty());
  EXPECT_EQ(ReportTypes(), (std::vector<std::string>{"install_start", "install_finish"}));
  const std::string userAgent = std::string("Zendora Installer/") + kProductVersion + " (Windows NT ";
  for (const RecordedRequest& request : server_->Requests()) {
    EXPECT_TRUE(request.headers.at("user-agent").starts_with(userAgent)) << request.target;
  }

  Press(BottomButton(Window()));
  ExpectExit();
}

TEST_F(Installation, CheckingRowsDecides) {
  const TestPackage first{.filename = "a.dat", .content = TestBytes(5000), .name = "N"};
  const TestPackage second{.filename = "b.dat", .content = TestBytes(5000), .name = "N", .isDefault = false};
  Offer({first, second});
  Start();
  AwaitList();
  PressKey(ComponentList(Window()), VK_HOME);
  PressKey(ComponentList(Window()), VK_SPACE);
  PressInstall();
  const InstallerBox box = ExpectBox();
  EXPECT_EQ(box.text, L"You have to select at least one component for installation");
  AnswerBox(box, IDOK);
  PressKey(ComponentList(Window()), VK_DOWN);
  PressKey(ComponentList(Window()), VK_SPACE);
  PressInstall();
  ExpectEnd();
  ExpectContent(TargetPath(L"N\\b.dat"), second.content);
  EXPECT_TRUE(server_->RequestsOf(FilePath(first)).empty());
}

TEST_F(Installation, SecondInstanceHandsItsCommandLineToTheFirst) {
  const TestPackage first{.filename = "a.dat", .content = TestBytes(5000), .name = "N"};
  const TestPackage second{.filename = "b.dat", .content = TestBytes(5000), .name = "N", .isDefault = false};
  Offer({first, second});
  Start();
  AwaitList();  // Install can be pressed from now on; a command line that is forwarded starts nothing by itself
  const InstallerProcess again(L"install:b.dat source:main");
  ASSERT_EQ(again.WaitForExit(), 0u);
  EXPECT_EQ(FindInstallerWindow(again.Id()), nullptr);
  PressInstall();
  ExpectEnd();
  ExpectContent(TargetPath(L"N\\b.dat"), second.content);
  EXPECT_TRUE(server_->RequestsOf(FilePath(first)).empty());
}

}  // namespace
