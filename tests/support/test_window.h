// A main window on a thread of its own with a message loop, as the program has it. Text is read and controls are
// written from the test's thread exactly as the program's workers do it.
#pragma once

#include <gtest/gtest.h>
#include <windows.h>
// Needs windows.h before it.
#include <commctrl.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "app/keyboard.h"
#include "app/main_window.h"
#include "app/pages.h"
#include "core/context.h"
#include "core/window_messages.h"
#include "support/installer_window.h"
#include "ui/mailbox.h"
#include "ui/page_controls.h"

inline std::wstring TextOf(HWND window) {
  std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
  return text;
}
// What the program's threads left for the window is shown before.
inline std::wstring TextOf(const Control& control) {
  Mailbox::Settle(app.mainWindow);
  return TextOf(control.Window());
}

// The calling thread. In app.manifestThread it keeps the program from starting that thread.
inline KernelHandle ActiveThread() {
  return KernelHandle(OpenThread(SYNCHRONIZE | THREAD_QUERY_LIMITED_INFORMATION, FALSE, GetCurrentThreadId()));
}

// Creates the program's own main window, with the manifest thread left out: TestWindow window(CreateProgramWindow).
inline void CreateProgramWindow() {
  app.manifestThread = ActiveThread();
  RegisterMainWindowClass(app.instance);
  EXPECT_TRUE(CreateMainWindow(app.instance, SW_SHOWNORMAL));
  app.manifestThread.Reset();
}

// Where the focus of the window's thread is, and where Tab leads it until it is there again.
inline std::vector<HWND> TabRound(HWND window) {
  std::vector<HWND> round{FocusOf(window)};
  do {
    PressKey(round.back(), VK_TAB);
    EXPECT_TRUE(WaitUntil([&] { return FocusOf(window) != round.back(); }));
    round.push_back(FocusOf(window));
  } while (round.back() != round.front() && round.size() < 20);
  round.pop_back();
  return round;
}

class TestWindow {
 public:
  // A bare window with the installation page, but nobody who handles its commands. It closes on WM_CLOSE.
  TestWindow() : TestWindow(CreateBareWindow) {}
  // The window that `create` makes on the UI thread and stores in app.mainWindow.
  explicit TestWindow(const std::function<void()>& create) {
    thread_ = std::thread(&TestWindow::Loop, this, create);
    WaitForSingleObject(ready_.Get(), INFINITE);
    EXPECT_TRUE(window_);
  }
  // Destroys the window without a relaunch and ends the thread.
  ~TestWindow() {
    app.restartRequested = false;
    Run([this] { DestroyWindow(window_); });
    thread_.join();
    app.mainWindow = nullptr;
    app.currentPage = NoPage;
  }

  HWND Window() const { return window_; }
  // The controls of the page; the page must exist.
  ComponentsPageControls& Components() const { return *static_cast<ComponentsPageControls*>(app.componentsPage); }
  InstallPageControls& Installation() const { return *static_cast<InstallPageControls*>(app.installPage); }

  // Runs a step on the UI thread and returns when it is done. Works while that thread shows a message box.
  void Run(const std::function<void()>& step) const {
    SendMessageW(window_, kRunStep, 0, reinterpret_cast<LPARAM>(&step));
  }
  // True when the window is destroyed within ten seconds.
  bool WaitUntilClosed() const { return WaitForSingleObject(closed_.Get(), 10'000) == WAIT_OBJECT_0; }

  // The lines of the log of the installation page, without line ends.
  std::vector<std::wstring> LogLines() const {
    Mailbox::Settle(app.mainWindow);
    return ::LogLines(window_);
  }

 private:
  static constexpr UINT kRunStep = WM_APP;

  static LRESULT CALLBACK RunSteps(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR) {
    if (message == kShowNotesMessage) pageNotes.OnMessage(window, wParam);
    if (message == kRunStep) (*reinterpret_cast<const std::function<void()>*>(lParam))();
    const LRESULT result = DefSubclassProc(window, message, wParam, lParam);
    if (message == WM_DESTROY) PostQuitMessage(0);
    return result;
  }
  // A label makes a good bare window: it leaves what its children say to the procedure.
  static void CreateBareWindow() {
    const DWORD style = WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX | WS_CLIPCHILDREN | WS_VISIBLE;
    app.mainWindow =
        CreateWindowExW(0, L"Static", L"Test", style, 0, 0, 600, 480, nullptr, nullptr, app.instance, nullptr);
    ShowInstallPage();
  }
  void Loop(const std::function<void()>& create) {
    create();
    window_ = app.mainWindow;
    SetWindowSubclass(window_, RunSteps, 0, 0);
    SetEvent(ready_.Get());
    for (MSG message; window_ && GetMessageW(&message, nullptr, 0, 0) > 0;) {
      if (TakeKey(nullptr, message)) continue;
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
    SetEvent(closed_.Get());
  }

  HWND window_ = nullptr;
  const KernelHandle ready_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  const KernelHandle closed_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  std::thread thread_;
};
