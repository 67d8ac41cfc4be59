// The program on the desktops of other people: at other scales, operated with the keyboard, while data is in use.
#include "program/installer_test.h"
#include "resource.h"
#include "system/files.h"

namespace {

constexpr wchar_t kDesktopKey[] = L"Control Panel\\Desktop";
constexpr wchar_t kDpiValue[] = L"LogPixels";

class Desktop : public InstallerTest {
 protected:
  // What programs that start from now on take for the scale of the screen.
  static void SetScreenDpi(DWORD dpi) {
    RegSetKeyValueW(HKEY_CURRENT_USER, kDesktopKey, kDpiValue, REG_DWORD, &dpi, sizeof dpi);
  }
  void TearDown() override {
    RegDeleteKeyValueW(HKEY_CURRENT_USER, kDesktopKey, kDpiValue);
    InstallerTest::TearDown();
  }

  // Chooses a command. False when it keeps the window from answering for so long, as one does that shows a box.
  bool IsDoneWithin(std::chrono::milliseconds limit, int command) {
    DWORD_PTR result = 0;
    return SendMessageTimeoutW(Window(), WM_COMMAND, static_cast<WPARAM>(command), 0, SMTO_NORMAL,
                               static_cast<UINT>(limit.count()), &result) != 0;
  }

  SIZE ClientSize() {
    RECT client{};
    GetClientRect(Window(), &client);
    return {client.right, client.bottom};
  }
};

TEST_F(Desktop, TheWindowIsMadeForTheScaleOfTheScreen) {
  Offer({{.filename = "a.dat", .content = "a"}});
  SIZE unscaled{};
  for (const int dpi : {96, 144}) {
    SetScreenDpi(static_cast<DWORD>(dpi));
    Start();
    AwaitList();
    const SIZE client = ClientSize();
    if (dpi == 96) unscaled = client;
    EXPECT_EQ(client.cx, MulDiv(unscaled.cx, dpi, 96));
    EXPECT_EQ(client.cy, MulDiv(unscaled.cy, dpi, 96));
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
  const auto focus = [this] {
    GUITHREADINFO thread = {};
    thread.cbSize = sizeof thread;
    GetGUIThreadInfo(GetWindowThreadProcessId(Window(), nullptr), &thread);
    return thread.hwndFocus;
  };
  ASSERT_TRUE(WaitUntil([&] { return focus() == ComponentList(Window()); }));
  for (const WPARAM key : {VK_ESCAPE, VK_DOWN, VK_DOWN, VK_SPACE, VK_TAB}) PressKey(focus(), key);
  ASSERT_TRUE(WaitUntil([&] { return ShownText(focus()) == L"Install"; }));
  PressKey(focus(), VK_RETURN);
  ExpectEnd();
  ExpectContent(TargetPath(L"N\\b.dat"), second.content);
  ASSERT_TRUE(WaitUntil([&] { return ShownText(focus()) == L"Exit"; }));
  PressKey(focus(), VK_SPACE);
  ExpectExit();
}

// That the command is grey meanwhile can't be seen from another process.
TEST_F(Desktop, DataInUseCantBeDeleted) {
  const TestPackage package{.filename = "a.dat", .content = "a", .name = "N"};
  Offer({package});
  server_->AnswerNext(FilePath(package), {.body = package.content, .stallBeforeAnswer = true});
  Start(L"install:a.dat source:main");
  ASSERT_TRUE(server_->WaitForStall());
  EXPECT_TRUE(IsDoneWithin(std::chrono::seconds(10), COMMAND_DELETE_APP_DATA));
  server_->Resume();
  ExpectEnd();
  // The worker ends in a moment.
  EXPECT_TRUE(WaitUntil([this] { return !IsDoneWithin(std::chrono::seconds(1), COMMAND_DELETE_APP_DATA); }));
  AnswerBox(ExpectBox(L"Following data will be deleted"), IDNO);
  EXPECT_TRUE(PathExists(TempPath(L"a.dat")));
  Close();
  ExpectExit();
}

}  // namespace
