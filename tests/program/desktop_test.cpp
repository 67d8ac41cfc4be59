// The program on the desktops of other people: at other scales, and operated with the keyboard or started twice.
#include "core/site.h"
#include "program/installer_test.h"

namespace {

using Desktop = InstallerTest;

TEST_F(Desktop, TheWindowIsMadeForTheScaleOfTheScreen) {
  Offer({{.filename = "a.dat", .content = "a"}});
  SIZE unscaled{};
  for (const int dpi : {96, 144, 96}) {
    // What programs that start from now on take for the scale.
    RegSetKeyValueW(HKEY_CURRENT_USER, L"Control Panel\\Desktop", L"LogPixels", REG_DWORD, &dpi, sizeof dpi);
    Start();
    AwaitList();
    RECT client{};
    GetClientRect(Window(), &client);
    if (dpi == 96) unscaled = {client.right, client.bottom};
    EXPECT_EQ(client.right, MulDiv(unscaled.cx, dpi, 96));
    EXPECT_EQ(client.bottom, MulDiv(unscaled.cy, dpi, 96));
    RECT place{};
    GetWindowRect(Window(), &place);
    EXPECT_NEAR(place.left + place.right, GetSystemMetrics(SM_CXSCREEN), 1) << "the screen is measured in real pixels";
    Close();
    ExpectExit();
  }
}

TEST_F(Desktop, AnInstallationNeedsNoMouse) {
  const TestPackage first{.filename = "a.dat", .content = "a", .name = "N"};
  const TestPackage second{.filename = "b.dat", .content = "b", .name = "N", .isDefault = false};
  Offer({first, second});
  Start();
  AwaitList();
  const auto focus = [this] { return FocusOf(Window()); };
  ASSERT_TRUE(WaitUntil([&] { return focus() == ComponentList(Window()); }));
  // Neither leaves the page.
  for (const WPARAM key : {VK_ESCAPE, VK_RETURN}) PressKey(focus(), key);
  for (const WPARAM key : {VK_HOME, VK_SPACE, VK_TAB}) PressKey(focus(), key);
  ASSERT_TRUE(WaitUntil([&] { return ShownText(focus()) == L"Install"; }));
  for (const WPARAM key : {VK_ESCAPE, VK_RETURN}) PressKey(focus(), key);
  const InstallerBox box = ExpectBox();
  EXPECT_EQ(box.text, L"You have to select at least one component for installation");
  AnswerBox(box, IDOK);
  for (const WPARAM key : {VK_DOWN, VK_SPACE}) PressKey(ComponentList(Window()), key);
  ASSERT_TRUE(WaitUntil([&] { return ShownText(focus()) == L"Install"; }));
  PressKey(focus(), VK_RETURN);
  ExpectEnd();
  ExpectContent(TargetPath(L"N\\b.dat"), second.content);
  EXPECT_TRUE(server_.RequestsOf(FilePath(first)).empty());
  ASSERT_TRUE(WaitUntil([&] { return ShownText(focus()) == L"Exit"; }));
  PressKey(focus(), VK_SPACE);
  ExpectExit();
}

TEST_F(Desktop, ASecondInstanceHandsItsCommandLineToTheFirst) {
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
  EXPECT_TRUE(server_.RequestsOf(FilePath(first)).empty());
  EXPECT_EQ(ReportTypes(), (std::vector<std::string>{"install_start", "install_finish"}));
  const std::string userAgent = std::string("Zendora Installer/") + kProductVersion + " (Windows NT ";
  for (const RecordedRequest& request : server_.Requests()) {
    EXPECT_TRUE(request.headers.at("User-Agent").starts_with(userAgent)) << request.target;
  }
}

}  // namespace
