#include "support/test_window.h"

#include <commctrl.h>
#include <gtest/gtest.h>

#include "app/main_window.h"
#include "app/pages.h"

namespace {

constexpr wchar_t kBareClass[] = L"ZendoraTestWindow";
constexpr wchar_t kStepClass[] = L"ZendoraTestSteps";
constexpr UINT kRunStep = WM_APP, kEnd = WM_APP + 1;
constexpr DWORD kPatience = 10'000;

LRESULT CALLBACK StepProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message != kRunStep) return DefWindowProcW(window, message, wParam, lParam);
  (*reinterpret_cast<const std::function<void()>*>(lParam))();
  return 0;
}

void RegisterTestClass(const wchar_t* name, WNDPROC procedure) {
  WNDCLASSW description{};
  description.lpfnWndProc = procedure;
  description.hInstance = app.instance;
  description.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_WINDOW + 1);
  description.lpszClassName = name;
  RegisterClassW(&description);
}

// What an ended window leaves in `app`. Threads that a test started have ended by then.
void ClearWindowState() {
  app.mainWindow = nullptr;
  app.currentPage = NoPage;
  delete static_cast<ComponentsPageControls*>(app.componentsPage);
  app.componentsPage = nullptr;
  delete static_cast<InstallPageControls*>(app.installPage);
  app.installPage = nullptr;
  app.manifestThread.Reset();
  app.workerThread.Reset();
  app.cancelRequested = false;
  app.installRunning = false;
  app.closeAttempts = 0;
  app.closeReason = NotEnding;
  app.restartRequested = false;
  app.restartElevated = false;
  app.restartArgs.clear();
  app.updateInProgress = false;
  app.selectionFromUser = false;
}

}  // namespace

TestWindow::TestWindow(Page page, Handler handler) : handler_(std::move(handler)) {
  Start([this, page] {
    const INITCOMMONCONTROLSEX classes{sizeof(classes), ICC_LISTVIEW_CLASSES | ICC_PROGRESS_CLASS};
    InitCommonControlsEx(&classes);
    RegisterTestClass(kBareClass, BareProc);
    const DWORD style = WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX | WS_CLIPCHILDREN | WS_VISIBLE;
    app.mainWindow =
        CreateWindowExW(0, kBareClass, L"Test", style, 0, 0, 600, 480, nullptr, nullptr, app.instance, this);
    if (page == ComponentsPage) ShowComponentsPage();
    if (page == InstallPage) ShowInstallPage();
  });
}

TestWindow::TestWindow(const std::function<void()>& create) { Start(create); }

TestWindow::~TestWindow() {
  app.restartRequested = false;
  if (IsOpen()) {
    Run([this] { DestroyWindow(window_); });
  }
  PostMessageW(steps_, kEnd, 0, 0);
  WaitForSingleObject(thread_.Get(), INFINITE);
  ClearWindowState();
}

void TestWindow::Run(const std::function<void()>& step) const {
  SendMessageW(steps_, kRunStep, 0, reinterpret_cast<LPARAM>(&step));
}

void TestWindow::Settle() const {
  const KernelHandle settled(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  const std::function<void()> signal = [&settled] { SetEvent(settled.Get()); };
  PostMessageW(steps_, kRunStep, 0, reinterpret_cast<LPARAM>(&signal));
  // The step refers to this frame, so there is no giving up.
  WaitForSingleObject(settled.Get(), INFINITE);
}

bool TestWindow::WaitUntilClosed() const { return WaitForSingleObject(closed_.Get(), kPatience) == WAIT_OBJECT_0; }

std::vector<std::wstring> TestWindow::LogLines() const {
  std::vector<std::wstring> lines;
  const std::wstring log = TextOf(Installation().logEdit);
  for (size_t start = 0, end; (end = log.find(L"\r\n", start)) != std::wstring::npos; start = end + 2) {
    lines.push_back(log.substr(start, end - start));
  }
  return lines;
}

void TestWindow::Start(const std::function<void()>& create) {
  create_ = &create;
  ready_.Reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  closed_.Reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));
  thread_.Reset(CreateThread(nullptr, 0, ThreadProc, this, 0, nullptr));
  WaitForSingleObject(ready_.Get(), INFINITE);
  EXPECT_TRUE(IsOpen());
}

DWORD WINAPI TestWindow::ThreadProc(void* self) {
  static_cast<TestWindow*>(self)->Loop();
  return 0;
}

void TestWindow::Loop() {
  RegisterTestClass(kStepClass, StepProc);
  steps_ = CreateWindowExW(0, kStepClass, nullptr, 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, app.instance, nullptr);
  (*create_)();
  window_ = app.mainWindow;
  SetEvent(ready_.Get());

  // Goes on after WM_QUIT, so that steps can be run when the window is gone.
  MSG message;
  for (;;) {
    if (GetMessageW(&message, nullptr, 0, 0) == 0) {
      SetEvent(closed_.Get());
      continue;
    }
    if (message.hwnd == steps_ && message.message == kEnd) break;
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  DestroyWindow(steps_);
}

LRESULT CALLBACK TestWindow::BareProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_NCCREATE) {
    const auto self = reinterpret_cast<const CREATESTRUCTW*>(lParam)->lpCreateParams;
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(self));
  }
  const auto self = reinterpret_cast<const TestWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
  if (self && self->handler_) {
    if (const auto result = self->handler_(message, wParam, lParam)) return *result;
  }
  if (message == WM_DESTROY) PostQuitMessage(0);
  return DefWindowProcW(window, message, wParam, lParam);
}

void CreateProgramWindow() {
  app.manifestThread = ActiveThread();
  RegisterMainWindowClass(app.instance);
  EXPECT_TRUE(CreateMainWindow(app.instance, SW_SHOWNORMAL));
  app.manifestThread.Reset();
}

KernelHandle ActiveThread() {
  HANDLE self = nullptr;
  DuplicateHandle(GetCurrentProcess(), GetCurrentThread(), GetCurrentProcess(), &self, 0, FALSE, DUPLICATE_SAME_ACCESS);
  return KernelHandle(self);
}

std::wstring TextOf(HWND window) {
  std::wstring text(static_cast<size_t>(SendMessageW(window, WM_GETTEXTLENGTH, 0, 0)) + 1, L'\0');
  text.resize(
      static_cast<size_t>(SendMessageW(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
  return text;
}

Place PlaceOf(HWND window) {
  RECT bounds;
  GetWindowRect(window, &bounds);
  POINT corner{bounds.left, bounds.top};
  ScreenToClient(GetParent(window), &corner);
  return {corner.x, corner.y, bounds.right - bounds.left, bounds.bottom - bounds.top};
}

int PositionOf(const ProgressBar& bar) { return static_cast<int>(SendMessageW(bar.Window(), PBM_GETPOS, 0, 0)); }
