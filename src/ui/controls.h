// The wrappers of the main window's controls. Any thread may set texts and positions: it leaves them in the mailbox of
// the window (ui/mailbox.h) and goes on. All else belongs to the UI thread. A wrapper owns its font, not the window,
// which dies with its parent.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "system/handles.h"
#include "system/shared_state.h"

// Where a control stands in its parent's client area, at 96 dots per inch.
struct Place {
  int x, y, width, height;
};
void PlaceWindow(HWND window, const Place& place);

std::wstring WindowText(HWND window);

// Gives a window its current font with another height (a LOGFONT height at 96 dots per inch). The font must live as
// long as it is used.
FontHandle ChangeFontHeight(HWND window, int height);

// What all wrappers share: a child window, and the font that was made for it.
class Control {
 public:
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  HWND Window() const { return window_; }
  void SetPlace(const Place& place) const;
  void SetText(const std::wstring& text) const;
  // A LOGFONT height at 96 dots per inch; the rest of the font stays.
  void SetFontHeight(int height);

 protected:
  Control(HWND parent, const wchar_t* windowClass, const std::wstring& text, DWORD style, int id, bool stockFont);
  ~Control() = default;

 private:
  HWND window_;
  FontHandle font_;
};

class Label : public Control {
 public:
  explicit Label(HWND parent, const std::wstring& text = {}, DWORD staticStyle = 0);
};

class PushButton : public Control {
 public:
  PushButton(HWND parent, const std::wstring& text);
  // The width is always 100, the text that of the system's own buttons.
  void PlaceAt(int x, int y, int height);
};

class CheckBox : public Control {
 public:
  CheckBox(HWND parent, const std::wstring& text, bool checked);
  bool IsChecked() const;
};

class TextEdit : public Control {
 public:
  TextEdit(HWND parent, int id, const std::wstring& text, DWORD editStyle);
  // From now on the text can be scrolled, selected and copied, but not changed by the user. UI thread, once.
  void Lock();

 private:
  static LRESULT CALLBACK LockedProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  LRESULT ShowContextMenu(WPARAM wParam, LPARAM lParam) const;

  WNDPROC previousProc_ = nullptr;
  bool locked_ = false;
};

// Positions run from 0 to kProgressRange.
inline constexpr int kProgressRange = 1000;

class ProgressBar : public Control {
 public:
  explicit ProgressBar(HWND parent);
  // 565 x 18 at x = 10.
  void PlaceAt(int y) const;
  // Does nothing when the position is the last one set. True when it was another.
  bool SetPosition(int position);

 private:
  SharedWord<int> lastPosition_{0};
};

// done * kProgressRange / total, truncated and within the range; 0 while `total` is 0.
int ProgressPosition(uint64_t done, uint64_t total);
