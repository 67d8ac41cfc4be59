#include "app/single_instance.h"

#include <gtest/gtest.h>

#include <atomic>
#include <optional>
#include <thread>

#include "app/context.h"
#include "support/box_recorder.h"
#include "support/shell_recorder.h"

namespace {

struct ReceivedCommandLine {
  WPARAM wParam;
  ULONG_PTR length;
  std::wstring buffer;  // all that came, fill included
};
std::optional<ReceivedCommandLine> received;

LRESULT CALLBACK KeepCommandLine(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message != WM_COPYDATA) return DefWindowProcW(window, message, wParam, lParam);
  const auto& data = *reinterpret_cast<const COPYDATASTRUCT*>(lParam);
  const auto text = static_cast<const wchar_t*>(data.lpData);
  received = {wParam, data.dwData, std::wstring(text, data.cbData / sizeof(wchar_t))};
  return TRUE;
}

// Stands for the main window of the instance that runs. Registered for another module of this process, so that it
// doesn't take the name from the real main window.
class OtherInstanceWindow {
 public:
  OtherInstanceWindow() {
    WNDCLASSW windowClass = {};
    windowClass.lpfnWndProc = KeepCommandLine;
    windowClass.hInstance = module_;
    windowClass.lpszClassName = kWindowClassName;
    EXPECT_TRUE(RegisterClassW(&windowClass));
    window_ = CreateWindowExW(0, kWindowClassName, L"", WS_OVERLAPPEDWINDOW | WS_VISIBLE | WS_MINIMIZE, 0, 0, 200, 200,
                              nullptr, nullptr, module_, nullptr);
    EXPECT_TRUE(IsIconic(window_));
  }
  ~OtherInstanceWindow() {
    DestroyWindow(window_);
    UnregisterClassW(kWindowClassName, module_);
  }

  bool IsRestored() const { return IsWindowVisible(window_) && !IsIconic(window_); }

 private:
  const HINSTANCE module_ = GetModuleHandleW(L"kernel32.dll");
  HWND window_;
};

class SingleInstance : public testing::Test {
 protected:
  ~SingleInstance() override {
    app.instanceMutex.Reset();
    app.startupWaitMs = 0;
    received.reset();
  }

  static KernelHandle TakeMutexOfOtherInstance() {
    KernelHandle mutex(CreateMutexW(nullptr, FALSE, kApplicationId));
    EXPECT_NE(GetLastError(), static_cast<DWORD>(ERROR_ALREADY_EXISTS));
    return mutex;
  }
};

}  // namespace

TEST_F(SingleInstance, FirstOneRunsAndHoldsTheMutex) {
  EXPECT_TRUE(ClaimSingleInstance(L""));
  EXPECT_EQ(app.startupWaitMs, 0u);
  const KernelHandle held(OpenMutexW(SYNCHRONIZE, FALSE, kApplicationId));
  EXPECT_TRUE(held);
}

TEST_F(SingleInstance, SecondOneForwardsItsCommandLineAndEnds) {
  const KernelHandle mutex = TakeMutexOfOtherInstance();
  struct Case {
    size_t length;
    bool forwarded;
  };
  for (const auto& [length, forwarded] : {Case{0, true}, Case{13, true}, Case{259, true}, Case{260, false}}) {
    const OtherInstanceWindow window;
    const std::wstring commandLine(length, L'a');
    received.reset();
    EXPECT_FALSE(ClaimSingleInstance(commandLine));
    EXPECT_FALSE(app.instanceMutex);
    EXPECT_TRUE(window.IsRestored());
    ASSERT_EQ(received.has_value(), forwarded) << length;
    if (!forwarded) continue;
    EXPECT_EQ(received->wParam, 0xD904u);
    EXPECT_EQ(received->length, length);
    EXPECT_EQ(received->buffer, commandLine + std::wstring(260 - length, L'\0'));
  }
  EXPECT_EQ(app.startupWaitMs, 0u);
}

TEST_F(SingleInstance, EndingInstanceIsWaitedFor) {
  KernelHandle mutex = TakeMutexOfOtherInstance();
  // Ends the other instance once the wait has been seen twice.
  std::thread other([&] {
    while (std::atomic_ref(app.startupWaitMs).load() < 100) Sleep(1);
    mutex.Reset();
  });
  EXPECT_TRUE(ClaimSingleInstance(L""));
  other.join();
  EXPECT_TRUE(app.instanceMutex);
  EXPECT_GE(app.startupWaitMs, 100u);
  EXPECT_LT(app.startupWaitMs, 1000u);
  EXPECT_EQ(app.startupWaitMs % 50, 0u);
}

TEST_F(SingleInstance, InstanceThatStaysIsShownInTheTaskManager) {
  const KernelHandle mutex = TakeMutexOfOtherInstance();
  const ShellRecorder shell;
  std::vector<RecordedBox> boxes;
  {
    BoxRecorder recorder({IDOK});
    EXPECT_FALSE(ClaimSingleInstance(L""));
    boxes = recorder.Boxes();
  }
  EXPECT_FALSE(app.instanceMutex);
  EXPECT_EQ(app.startupWaitMs, 1000u);
  ASSERT_EQ(boxes.size(), 1u);
  EXPECT_EQ(boxes[0].caption, L"Error");
  EXPECT_EQ(boxes[0].text, L"Another instance is running. You should close already opened program first.");
  EXPECT_EQ(boxes[0].owner, nullptr);
  ASSERT_EQ(shell.Starts().size(), 1u);
  EXPECT_EQ(shell.Starts()[0].verb, L"");
  EXPECT_EQ(shell.Starts()[0].file, L"taskmgr.exe");
  EXPECT_EQ(shell.Starts()[0].parameters, L" /7");
  EXPECT_EQ(shell.Starts()[0].showCommand, SW_SHOWDEFAULT);
}
