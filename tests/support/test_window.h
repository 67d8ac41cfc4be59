// A main window on a thread of its own with a message loop, as the program has it. Text is read and controls are
// written from the test's thread exactly as the program's workers do it.
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "app/context.h"
#include "app/page_controls.h"

class TestWindow {
 public:
  // A bare window with this page: the program's pages, but nobody who handles their commands. It closes on WM_CLOSE.
  explicit TestWindow(Page page = InstallPage);
  // The window that `create` makes on the UI thread and stores in app.mainWindow.
  explicit TestWindow(const std::function<void()>& create);
  // Destroys the window without a relaunch and ends the thread.
  ~TestWindow();
  TestWindow(const TestWindow&) = delete;
  TestWindow& operator=(const TestWindow&) = delete;

  HWND Window() const { return window_; }
  // The controls of the page; the page must exist.
  ComponentsPageControls& Components() const { return *static_cast<ComponentsPageControls*>(app.componentsPage); }
  InstallPageControls& Installation() const { return *static_cast<InstallPageControls*>(app.installPage); }

  // Runs a step on the UI thread and returns when it is done. Works while that thread shows a message box.
  void Run(const std::function<void()>& step) const;
  // True when the window is destroyed within ten seconds.
  bool WaitUntilClosed() const { return WaitForSingleObject(closed_.Get(), 10'000) == WAIT_OBJECT_0; }

  // The lines of the log of the installation page, without line ends.
  std::vector<std::wstring> LogLines() const;

 private:
  HWND window_ = nullptr;
  const KernelHandle ready_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  const KernelHandle closed_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  std::thread thread_;
};

// Creates the program's own main window, with the manifest thread left out: TestWindow window(CreateProgramWindow).
void CreateProgramWindow();

// A handle to a thread that is active while the test runs. In app.manifestThread or app.workerThread it keeps the
// program from starting that thread.
KernelHandle ActiveThread();

std::wstring TextOf(HWND window);
inline std::wstring TextOf(const Control& control) { return TextOf(control.Window()); }

// The position of a progress bar.
int PositionOf(const ProgressBar& bar);
