#include "support/test_window.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include "app/main_window.h"
#include "app/pages.h"

namespace {

constexpr UINT kRunStep = WM_APP, kEnd = WM_APP + 1;

LRESULT CALLBACK StepProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR) {
  if (message != kRunStep) return DefSubclassProc(window, message, wParam, lParam);
  (*reinterpret_cast<const std::function<void()>*>(lParam))();
  return 0;
}

LRESULT CALLBACK PageProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR, DWORD_PTR data) {
  const auto& handler = *reinterpret_cast<const TestWindow::Handler*>(data);
  const auto result = handler ? handler(message, wParam, lParam) : std::nullopt;
  if (result) return *result;
  if (message == WM_DESTROY) PostQuitMessage(0);
  return DefSubclassProc(window, message, wParam, lParam);
}

// A label makes a good bare window: it leaves what its children say to the procedure.
HWND CreateBareWindow(DWORD style, HWND parent, SUBCLASSPROC procedure, const void* data) {
  const HWND window =
      CreateWindowExW(0, L"Static", L"Test", style, 0, 0, 600, 480, parent, nullptr, app.instance, nullptr);
  SetWindowSubclass(window, procedure, 0, reinterpret_cast<DWORD_PTR>(data));
  return window;
}

}  // namespace

TestWindow::TestWindow(Page page, Handler handler) : handler_(std::move(handler)) {
  Start([this, page] {
    const INITCOMMONCONTROLSEX classes{sizeof(classes), ICC_LISTVIEW_CLASSES | ICC_PROGRESS_CLASS};
    InitCommonControlsEx(&classes);
    const DWORD style = WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX | WS_CLIPCHILDREN | WS_VISIBLE;
    app.mainWindow = CreateBareWindow(style, nullptr, PageProc, &handler_);
    if (page == ComponentsPage) ShowComponentsPage();
    if (page == InstallPage) ShowInstallPage();
  });
}

TestWindow::TestWindow(const std::function<void()>& create) { Start(create); }

TestWindow::~TestWindow() {
  app.restartRequested = false;
  Run([this] { DestroyWindow(window_); });
  PostMessageW(steps_, kEnd, 0, 0);
  thread_.join();
  app.mainWindow = nullptr;
  app.currentPage = NoPage;
  delete static_cast<ComponentsPageControls*>(app.componentsPage);
  app.componentsPage = nullptr;
  delete static_cast<InstallPageControls*>(app.installPage);
  app.installPage = nullptr;
}

void TestWindow::Start(const std::function<void()>& create) {
  thread_ = std::thread([&] { Loop(create); });
  WaitForSingleObject(ready_.Get(), INFINITE);
  EXPECT_TRUE(IsOpen());
}

void TestWindow::Loop(const std::function<void()>& create) {
  steps_ = CreateBareWindow(0, HWND_MESSAGE, StepProc, nullptr);
  create();
  window_ = app.mainWindow;
  SetEvent(ready_.Get());

  // Goes on after WM_QUIT, so that steps can be run when the window is gone.
  for (MSG message{}; message.message != kEnd;) {
    if (GetMessageW(&message, nullptr, 0, 0) == 0) SetEvent(closed_.Get());
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  DestroyWindow(steps_);
}

void TestWindow::Run(const std::function<void()>& step) const {
  SendMessageW(steps_, kRunStep, 0, reinterpret_cast<LPARAM>(&step));
}

void TestWindow::Settle() const {
  const KernelHandle settled(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  const std::function<void()> signal = [&] { SetEvent(settled.Get()); };
  PostMessageW(steps_, kRunStep, 0, reinterpret_cast<LPARAM>(&signal));
  WaitForSingleObject(settled.Get(), INFINITE);
}

bool TestWindow::WaitUntilClosed() const { return WaitForSingleObject(closed_.Get(), 10'000) == WAIT_OBJECT_0; }

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
