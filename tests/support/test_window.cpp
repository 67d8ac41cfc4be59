#include "support/test_window.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include "app/main_window.h"
#include "app/pages.h"

namespace {

constexpr UINT kRunStep = WM_APP;

LRESULT CALLBACK RunSteps(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR) {
  if (message == kRunStep) (*reinterpret_cast<const std::function<void()>*>(lParam))();
  const LRESULT result = DefSubclassProc(window, message, wParam, lParam);
  if (message == WM_DESTROY) PostQuitMessage(0);
  return result;
}

// A label makes a good bare window: it leaves what its children say to the procedure.
void CreateBareWindow(Page page) {
  const INITCOMMONCONTROLSEX classes{sizeof(classes), ICC_LISTVIEW_CLASSES | ICC_PROGRESS_CLASS};
  InitCommonControlsEx(&classes);
  app.mainWindow =
      CreateWindowExW(0, L"Static", L"Test", WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX | WS_CLIPCHILDREN | WS_VISIBLE, 0,
                      0, 600, 480, nullptr, nullptr, app.instance, nullptr);
  if (page == ComponentsPage) ShowComponentsPage();
  if (page == InstallPage) ShowInstallPage();
}

}  // namespace

TestWindow::TestWindow(Page page) : TestWindow([page] { CreateBareWindow(page); }) {}

TestWindow::TestWindow(const std::function<void()>& create) {
  thread_ = std::thread([this, &create] {
    create();
    window_ = app.mainWindow;
    SetWindowSubclass(window_, RunSteps, 0, 0);
    SetEvent(ready_.Get());
    for (MSG message; window_ && GetMessageW(&message, nullptr, 0, 0) > 0;) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
    SetEvent(closed_.Get());
  });
  WaitForSingleObject(ready_.Get(), INFINITE);
  EXPECT_TRUE(IsWindow(window_));
}

TestWindow::~TestWindow() {
  app.restartRequested = false;
  Run([this] { DestroyWindow(window_); });
  thread_.join();
  app.mainWindow = nullptr;
  app.currentPage = NoPage;
}

void TestWindow::Run(const std::function<void()>& step) const {
  SendMessageW(window_, kRunStep, 0, reinterpret_cast<LPARAM>(&step));
}

std::vector<std::wstring> TestWindow::LogLines() const {
  std::vector<std::wstring> lines;
  const std::wstring log = TextOf(Installation().logEdit);
  for (size_t start = 0, end; (end = log.find(L"\r\n", start)) != std::wstring::npos; start = end + 2) {
    lines.push_back(log.substr(start, end - start));
  }
  return lines;
}

void CreateProgramWindow() {
  app.manifestThread = ActiveThread();
  RegisterMainWindowClass(app.instance);
  EXPECT_TRUE(CreateMainWindow(app.instance, SW_SHOWNORMAL));
  app.manifestThread.Reset();
}

KernelHandle ActiveThread() {
  return KernelHandle(OpenThread(SYNCHRONIZE | THREAD_QUERY_LIMITED_INFORMATION, FALSE, GetCurrentThreadId()));
}

std::wstring TextOf(HWND window) {
  std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
  return text;
}

int PositionOf(const ProgressBar& bar) { return static_cast<int>(SendMessageW(bar.Window(), PBM_GETPOS, 0, 0)); }
