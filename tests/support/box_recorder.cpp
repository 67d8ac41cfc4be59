#include "support/box_recorder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <optional>

namespace {

struct BoxParts {
  std::vector<HWND> texts, buttons;  // statics that are no icon; push buttons from left to right
  bool others = false;               // it has controls that no message box has
};

std::wstring ClassOf(HWND window) {
  wchar_t name[64] = L"";
  GetClassNameW(window, name, ARRAYSIZE(name));
  return name;
}

std::wstring TextOf(HWND window) {
  std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
  text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
  return text;
}

LONG LeftEdge(HWND window) {
  RECT place = {};
  GetWindowRect(window, &place);
  return place.left;
}

// Sends no message, so it may look at windows of a thread that waits for something else.
BOOL CALLBACK AddPart(HWND child, LPARAM parameter) {
  auto& parts = *reinterpret_cast<BoxParts*>(parameter);
  const std::wstring windowClass = ClassOf(child);
  const LONG style = GetWindowLongW(child, GWL_STYLE);
  const LONG buttonType = style & BS_TYPEMASK;
  if (windowClass == L"Static") {
    if ((style & SS_TYPEMASK) != SS_ICON) parts.texts.push_back(child);
  } else if (windowClass == L"Button" && (buttonType == BS_PUSHBUTTON || buttonType == BS_DEFPUSHBUTTON)) {
    parts.buttons.push_back(child);
  } else {
    parts.others = true;
  }
  return TRUE;
}

// The parts of a message box that is ready to be answered; nothing for every other window, file dialogs among them.
std::optional<BoxParts> PartsOfBox(HWND window) {
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (process != GetCurrentProcessId() || !IsWindowVisible(window) || ClassOf(window) != L"#32770") return {};
  BoxParts parts;
  EnumChildWindows(window, AddPart, reinterpret_cast<LPARAM>(&parts));
  if (parts.others || parts.texts.size() != 1 || parts.buttons.empty()) return {};
  std::sort(parts.buttons.begin(), parts.buttons.end(), [](HWND a, HWND b) { return LeftEdge(a) < LeftEdge(b); });
  return parts;
}

// Windows gives the only button of an MB_OK box the number of Cancel, so that Escape presses it.
int MeaningOf(HWND button, const BoxParts& parts) { return parts.buttons.size() == 1 ? IDOK : GetDlgCtrlID(button); }

BOOL CALLBACK FindBox(HWND window, LPARAM parameter) {
  if (!PartsOfBox(window)) return TRUE;
  *reinterpret_cast<HWND*>(parameter) = window;
  return FALSE;
}

}  // namespace

BoxRecorder::BoxRecorder(std::initializer_list<int> answers) : answers_(answers) {
  thread_ = std::thread(&BoxRecorder::Run, this);
}

BoxRecorder::~BoxRecorder() {
  stop_ = true;
  thread_.join();
  for (const std::string& failure : failures_) ADD_FAILURE() << failure;
  EXPECT_TRUE(answers_.empty()) << answers_.size() << " expected message boxes did not appear";
}

std::vector<RecordedBox> BoxRecorder::Boxes() const {
  const std::lock_guard lock(mutex_);
  return boxes_;
}

void BoxRecorder::Run() {
  while (!stop_) {
    HWND box = nullptr;
    EnumWindows(FindBox, reinterpret_cast<LPARAM>(&box));
    if (box) Answer(box);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

void BoxRecorder::Answer(HWND box) {
  const auto parts = PartsOfBox(box);
  if (!parts) return;
  RecordedBox recorded{TextOf(box), TextOf(parts->texts.front()), {}, GetWindow(box, GW_OWNER)};
  for (const HWND button : parts->buttons) recorded.buttons.push_back(MeaningOf(button, *parts));

  HWND pressed = parts->buttons.back();
  {
    const std::lock_guard lock(mutex_);
    const auto narrow = [](const std::wstring& text) { return testing::PrintToString(text); };
    if (answers_.empty()) {
      failures_.push_back("unexpected message box " + narrow(recorded.caption) + ": " + narrow(recorded.text));
    } else {
      const auto wanted = std::find(recorded.buttons.begin(), recorded.buttons.end(), answers_.front());
      if (wanted == recorded.buttons.end()) {
        failures_.push_back("message box without the button " + std::to_string(answers_.front()) + ": " +
                            narrow(recorded.text));
      } else {
        pressed = parts->buttons[static_cast<size_t>(wanted - recorded.buttons.begin())];
      }
      answers_.pop_front();
    }
    boxes_.push_back(std::move(recorded));
  }
  // Handled by the box itself, which is hidden when this returns and so not found again.
  SendMessageW(box, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(pressed), BN_CLICKED), reinterpret_cast<LPARAM>(pressed));
}
