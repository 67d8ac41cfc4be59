// The command line of this start, or of a second start that forwarded its own.
#pragma once

#include <string_view>

// Keeps the text in app.commandLine and applies it: "updated" at its very beginning removes the backup of the
// replaced program, "install:" and "source:" set app.installList and app.selectedSource. A text longer than
// kMaxPathLength characters is applied whole but kept cut. UI thread.
void ParseCommandLine(std::wstring_view commandLine);
