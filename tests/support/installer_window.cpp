#include "support/installer_window.h"

#include <commctrl.h>

#include <algorithm>
#include <thread>

#include "resource.h"

namespace {

constexpr UINT kAnswerLimitMs = 5000;

// SendMessage with a limit, so that a program that hangs fails a test instead of hanging it.
LRESULT Ask(HWND window, UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
  DWORD_PTR result = 0;
  SendMessageTimeoutW(window, message, wParam, lParam, SMTO_NORMAL, kAnswerLimitMs, &result);
  return static_cast<LRESULT>(result);
}

std::wstring ClassOf(HWND window) {
  wchar_t name[64] = L"";
  GetClassNameW(window, name, ARRAYSIZE(name));
  return name;
}

DWORD ProcessOf(HWND window) {
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  return process;
}

BOOL CALLBACK CollectWindow(HWND window, LPARAM list) {
  reinterpret_cast<std::vector<HWND>*>(list)->push_back(window);
  return TRUE;
}

std::vector<HWND> TopLevelWindows() {
  std::vector<HWND> windows;
  EnumWindows(CollectWindow, reinterpret_cast<LPARAM>(&windows));
  return windows;
}

std::vector<HWND> VisibleChildren(HWND parent) {
  std::vector<HWND> children;
  if (!IsWindow(parent)) return children;  // for null, the system would list the top-level windows
  EnumChildWindows(parent, CollectWindow, reinterpret_cast<LPARAM>(&children));
  std::erase_if(children, [](HWND child) { return !IsWindowVisible(child); });
  return children;
}

HWND VisibleChildOfClass(HWND parent, const wchar_t* windowClass) {
  for (const HWND child : VisibleChildren(parent)) {
    if (lstrcmpiW(ClassOf(child).c_str(), windowClass) == 0) return child;
  }
  return nullptr;
}

}  // namespace

bool WaitUntil(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
  const auto deadline = std::chrono::steady_clock::now() + limit;
  while (!condition()) {
    if (std::chrono::steady_clock::now() >= deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(15));
  }
  return true;
}

HWND FindInstallerWindow(DWORD process) {
  for (const HWND window : TopLevelWindows()) {
    if (ClassOf(window) == kWindowClassName && (process == 0 || ProcessOf(window) == process)) return window;
  }
  return nullptr;
}

Page PageOf(HWND window) {
  if (!IsWindow(window)) return NoPage;
  if (VisibleChildOfClass(window, WC_LISTVIEWW)) return ComponentsPage;
  if (VisibleChildOfClass(window, PROGRESS_CLASSW)) return InstallPage;
  return VisibleChildOfClass(window, WC_STATICW) ? ClosingPage : NoPage;
}

HWND ChildAt(HWND window, const wchar_t* windowClass, int x, int y) {
  for (const HWND child : VisibleChildren(window)) {
    RECT place = {};
    GetWindowRect(child, &place);
    POINT corner = {place.left, place.top};
    ScreenToClient(window, &corner);
    if (corner.x == x && corner.y == y && lstrcmpiW(ClassOf(child).c_str(), windowClass) == 0) return child;
  }
  return nullptr;
}

HWND BottomButton(HWND window) {
  HWND lowest = nullptr;
  LONG lowestTop = 0;
  for (const HWND child : VisibleChildren(window)) {
    RECT place = {};
    GetWindowRect(child, &place);
    if (lstrcmpiW(ClassOf(child).c_str(), WC_BUTTONW) != 0 || (lowest && place.top < lowestTop)) continue;
    lowest = child;
    lowestTop = place.top;
  }
  return lowest;
}

bool LabelsShow(HWND window, std::wstring_view part) {
  const std::vector<HWND> children = VisibleChildren(window);
  return std::any_of(children.begin(), children.end(), [part](HWND child) {
    return lstrcmpiW(ClassOf(child).c_str(), WC_STATICW) == 0 && ShownText(child).find(part) != std::wstring::npos;
  });
}

std::wstring ShownText(HWND window) {
  const auto length = static_cast<size_t>(Ask(window, WM_GETTEXTLENGTH));
  std::wstring text(length + 1, L'\0');
  text.resize(static_cast<size_t>(Ask(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()))));
  if (lstrcmpiW(ClassOf(window).c_str(), WC_BUTTONW) == 0) std::erase(text, L'&');
  return text;
}

std::vector<std::wstring> LogLines(HWND window) {
  const std::wstring text = ShownText(GetDlgItem(window, EDIT_LOG));
  std::vector<std::wstring> lines;
  for (size_t start = 0, end; (end = text.find(L"\r\n", start)) != std::wstring::npos; start = end + 2) {
    lines.push_back(text.substr(start, end - start));
  }
  return lines;
}

bool LogHas(HWND window, const std::wstring& line) {
  const std::vector<std::wstring> lines = LogLines(window);
  return std::find(lines.begin(), lines.end(), line) != lines.end();
}

void Press(HWND button) { PostMessageW(button, BM_CLICK, 0, 0); }

void PressKey(HWND control, WPARAM key) {
  PostMessageW(control, WM_KEYDOWN, key, 0);
  PostMessageW(control, WM_KEYUP, key, 0);
}

void ChooseCommand(HWND window, int command) { PostMessageW(window, WM_COMMAND, static_cast<WPARAM>(command), 0); }

HWND FocusOf(HWND window) {
  GUITHREADINFO thread = {};
  thread.cbSize = sizeof thread;
  GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &thread);
  return thread.hwndFocus;
}

HWND ComponentList(HWND window) { return VisibleChildOfClass(window, WC_LISTVIEWW); }

InstallerBox FindBox(DWORD process) {
  for (const HWND window : TopLevelWindows()) {
    if (ProcessOf(window) != process || !IsWindowVisible(window) || ClassOf(window) != L"#32770") continue;
    InstallerBox box{window, ShownText(window), L""};
    // The icon is a static without text.
    for (const HWND child : VisibleChildren(window)) {
      if (lstrcmpiW(ClassOf(child).c_str(), WC_STATICW) == 0) box.text += ShownText(child);
    }
    return box;
  }
  return {};
}

void AnswerBox(const InstallerBox& box, int button) {
  // Windows gives the only button of an MB_OK box the number of Cancel, so that Escape presses it.
  HWND control = GetDlgItem(box.window, button);
  if (!control && button == IDOK) control = GetDlgItem(box.window, IDCANCEL);
  Press(control);
}
