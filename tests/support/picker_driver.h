// Answers the system's pickers for files and folders and keeps what they showed. While it lives, a thread of its own
// waits for the pickers of this process, types a path into each and presses its button.
#pragma once

#include <windows.h>

#include <atomic>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

struct RecordedPicker {
  std::wstring title;
  std::wstring name;                   // what stood in the field for the name
  std::vector<std::wstring> patterns;  // the kinds of files to choose from
  HWND owner = nullptr;
};

class PickerDriver {
 public:
  // What to type, in order; relative to the folder that the picker shows. An empty text presses Cancel, and so does a
  // picker beyond them, which fails the test. `onPicker` is called on the thread of its own before each answer.
  explicit PickerDriver(const std::vector<std::wstring>& choices, std::function<void()> onPicker = {});
  // Fails the test when a choice was not asked for.
  ~PickerDriver();
  PickerDriver(const PickerDriver&) = delete;
  PickerDriver& operator=(const PickerDriver&) = delete;

  std::vector<RecordedPicker> Pickers() const;

 private:
  void Run();
  void Answer(HWND picker);

  mutable std::mutex mutex_;
  std::deque<std::wstring> choices_;
  const std::function<void()> onPicker_;
  std::vector<RecordedPicker> pickers_;
  HWND answered_ = nullptr;
  std::atomic<bool> stop_ = false;
  std::thread thread_;
};
