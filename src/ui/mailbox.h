// What other threads have for a window to show. They leave it in a mailbox and go on at once; the window's thread shows
// it when it next looks at its messages, so that no work ever waits for a window.
#pragma once

#include <windows.h>

#include <cstdint>
#include <map>
#include <mutex>
#include <string>

// Any thread may leave notes for the child controls of one window. On that window's own thread they are shown at once,
// together with what was left before. What is left for a control that is gone goes nowhere.
class Mailbox {
 public:
  // Of a control's texts and of a bar's positions only the newest counts.
  void LeaveText(HWND control, const std::wstring& text);
  void LeavePosition(HWND bar, int position);
  // Each line of a log is shown, in the order in which they came. The user's selection in the log stays.
  void LeaveLine(HWND log, const std::wstring& line);

  // Shows what was left, and returns when that is done. Any thread; who asks the user something calls it before.
  static void Settle(HWND window);

  // What the window does with kShowNotesMessage. It is posted once, however much is left meanwhile; sent by Settle.
  void OnMessage(HWND window, WPARAM atOnce);

 private:
  struct Notes {
    std::map<HWND, std::wstring> texts;
    std::map<HWND, int> positions;
    std::map<HWND, std::wstring> lines;  // with their ends
  };

  template <typename Write>
  void Leave(HWND control, Write write);
  void Wake(HWND control);
  void Show();
  static void CALLBACK ShowAfterRest(HWND window, UINT message, UINT_PTR id, DWORD time);

  std::mutex lock_;
  Notes notes_;
  HWND woken_ = nullptr;    // the window that was told and hasn't looked yet
  uint64_t lastShown_ = 0;  // tick; the window's thread
};

// Of the main window's pages.
extern Mailbox& pageNotes;
