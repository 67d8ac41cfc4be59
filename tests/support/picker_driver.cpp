#include "support/picker_driver.h"

#include <gtest/gtest.h>

#include <chrono>

#include "support/test_window.h"

namespace {

// Buttons have these numbers in both pickers of every Windows.
struct PickerParts {
  HWND name = nullptr, ok = nullptr, cancel = nullptr, patterns = nullptr;
};

std::wstring ClassOf(HWND window) {
  wchar_t name[64] = L"";
  GetClassNameW(window, name, ARRAYSIZE(name));
  return name;
}

BOOL CALLBACK AddPart(HWND child, LPARAM parameter) {
  auto& parts = *reinterpret_cast<PickerParts*>(parameter);
  const std::wstring windowClass = ClassOf(child);
  const int id = GetDlgCtrlID(child);
  if (windowClass == L"Button" && id == IDOK) parts.ok = child;
  if (windowClass == L"Button" && id == IDCANCEL) parts.cancel = child;
  if (!IsWindowVisible(child)) return TRUE;
  if (windowClass == L"Edit") parts.name = child;
  if (windowClass == L"ComboBox" && SendMessageW(child, CB_GETCOUNT, 0, 0) > 0) parts.patterns = child;
  return TRUE;
}

PickerParts PartsOf(HWND picker) {
  PickerParts parts;
  EnumChildWindows(picker, AddPart, reinterpret_cast<LPARAM>(&parts));
  return parts;
}

BOOL CALLBACK FindPicker(HWND window, LPARAM parameter) {
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (process != GetCurrentProcessId() || !IsWindowVisible(window) || ClassOf(window) != L"#32770") return TRUE;
  HWND& picker = *reinterpret_cast<HWND*>(parameter);
  const PickerParts parts = PartsOf(window);
  if (parts.name && parts.ok && parts.cancel) picker = window;
  return picker == nullptr;
}

std::vector<std::wstring> ItemsOf(HWND comboBox) {
  std::vector<std::wstring> items;
  const auto count = comboBox ? SendMessageW(comboBox, CB_GETCOUNT, 0, 0) : 0;
  for (WPARAM i = 0; i < static_cast<WPARAM>(count); ++i) {
    std::wstring text(static_cast<size_t>(SendMessageW(comboBox, CB_GETLBTEXTLEN, i, 0)), L'\0');
    SendMessageW(comboBox, CB_GETLBTEXT, i, reinterpret_cast<LPARAM>(text.data()));
    items.push_back(text);
  }
  return items;
}

}  // namespace

PickerDriver::PickerDriver(const std::vector<std::wstring>& choices, std::function<void()> onPicker)
    : choices_(choices.begin(), choices.end()), onPicker_(std::move(onPicker)) {
  thread_ = std::thread(&PickerDriver::Run, this);
}

PickerDriver::~PickerDriver() {
  stop_ = true;
  thread_.join();
  EXPECT_TRUE(choices_.empty()) << choices_.size() << " expected pickers did not appear";
}

std::vector<RecordedPicker> PickerDriver::Pickers() const {
  const std::lock_guard lock(mutex_);
  return pickers_;
}

void PickerDriver::Run() {
  while (!stop_) {
    HWND picker = nullptr;
    EnumWindows(FindPicker, reinterpret_cast<LPARAM>(&picker));
    if (picker && picker != answered_) Answer(picker);
    if (!picker) answered_ = nullptr;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
}

void PickerDriver::Answer(HWND picker) {
  answered_ = picker;
  if (onPicker_) onPicker_();
  const PickerParts parts = PartsOf(picker);
  const std::lock_guard lock(mutex_);
  pickers_.push_back({TextOf(picker), TextOf(parts.name), ItemsOf(parts.patterns), GetWindow(picker, GW_OWNER)});
  EXPECT_FALSE(choices_.empty()) << "unexpected picker " << testing::PrintToString(pickers_.back().title);
  const std::wstring choice = choices_.empty() ? L"" : choices_.front();
  if (!choices_.empty()) choices_.pop_front();
  const HWND button = choice.empty() ? parts.cancel : parts.ok;
  if (!choice.empty()) SendMessageW(parts.name, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(choice.c_str()));
  const WPARAM pressed = static_cast<WPARAM>(MAKEWPARAM(GetDlgCtrlID(button), BN_CLICKED));
  PostMessageW(GetParent(button), WM_COMMAND, pressed, reinterpret_cast<LPARAM>(button));
}
