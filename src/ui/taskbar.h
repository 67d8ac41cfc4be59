// The program's button in the taskbar: how far a run is, whether it is held up, and that the user is wanted. Any thread
// may tell; the window's thread shows it when it next looks at its messages. Windows before 7 show nothing of it.
#pragma once

#include <windows.h>

// How far the current phase of a run is, from 0 to kProgressRange.
void TellTaskbarProgress(int position);

// Whether the line is down and is being retried.
void TellTaskbarRetrying(bool retrying);

// The button shows the progress of a run while this lives, and calls for the user at its end.
class TaskbarRun {
 public:
  TaskbarRun();
  ~TaskbarRun();
  TaskbarRun(const TaskbarRun&) = delete;
  TaskbarRun& operator=(const TaskbarRun&) = delete;
};

// A box waits for the user while this lives: the button calls for him if he is elsewhere, and a run's progress turns
// red.
class TaskbarCall {
 public:
  TaskbarCall();
  ~TaskbarCall();
  TaskbarCall(const TaskbarCall&) = delete;
  TaskbarCall& operator=(const TaskbarCall&) = delete;
};

// kTaskbarMessage. UI thread.
void OnTaskbarMessage(HWND window, WPARAM what, LPARAM value);
