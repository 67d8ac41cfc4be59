// One instance per session: a second start hands its command line to the first and ends. UI thread.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

// wParam of the WM_COPYDATA message that forwards a command line: dwData is its length in characters, lpData a
// buffer of kForwardBufferLength characters that holds it, its terminator and zero fill.
inline constexpr WPARAM kCopyDataCommandLine = 0xD904;
inline constexpr size_t kForwardBufferLength = 260;

// True when this process may run (app.instanceMutex is then held, app.startupWaitMs tells how long an ending
// instance was waited for). False when it must end: the other instance was brought to the front, or it would not go
// away and the user was told.
bool ClaimSingleInstance(const std::wstring& commandLine);

// Keeps a command line in app.commandLine and applies it: "updated" at its very beginning removes the backup of the
// replaced program, "install:" and "source:" set app.installList and app.selectedSource. A text longer than
// kMaxPathLength characters is applied whole but kept cut.
void ParseCommandLine(std::wstring_view commandLine);

// WM_COPYDATA: applies a command line that a second instance forwarded. What a sender wrote beyond its own text is not
// read.
void OnForwardedCommandLine(WPARAM kind, const COPYDATASTRUCT& data);
