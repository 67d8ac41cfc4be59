// Answers message boxes and keeps what they said. While it lives, a thread of its own waits for the message boxes of
// this process, records each and presses a button of it.
#pragma once

#include <windows.h>

#include <atomic>
#include <deque>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

struct RecordedBox {
  std::wstring caption, text;
  std::vector<int> buttons;  // their identifiers: IDOK, IDYES, IDNO, ...
  HWND owner = nullptr;
};

class BoxRecorder {
 public:
  // The answers to give, in order. A box beyond them fails the test and is answered with its last button.
  explicit BoxRecorder(std::initializer_list<int> answers);
  // Fails the test when an answer was not asked for.
  ~BoxRecorder();

  std::vector<RecordedBox> Boxes() const;

 private:
  void Run();
  void Answer(HWND box);

  mutable std::mutex mutex_;
  std::deque<int> answers_;
  std::vector<RecordedBox> boxes_;
  std::vector<std::string> failures_;  // reported at the end, on the test's own thread
  std::atomic<bool> stop_ = false;
  std::thread thread_;
};
