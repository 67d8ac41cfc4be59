// The copy of the program that a self-update moves aside. UI thread at start-up, unless said otherwise.
#pragma once

#include <string>

// Where an update keeps the program that it downloads. Any thread.
std::wstring UpdateFilePath();

// Where an update completes the new program, beside the old one, before it takes its place. Any thread.
std::wstring NewProgramPath();

// Removes the copy after an update. The program that was updated may still be ending, and can't be removed before it
// has: that is waited for, one second at most, unless the window is there already.
void RemoveReplacedProgram();

// Where an update was interrupted between its two renames, the copy is all that is left; started under its own name, it
// takes the program's place again, which must be empty. To be called when the settings are loaded.
void RestoreReplacedProgram();

// Removes the copy that an update left when the program was ended before it could relaunch: this program is then the
// one that was downloaded. Any other file of the copy's name is somebody's own and stays. Manifest thread, once it is
// clear that no update is under way.
void RemoveForgottenCopy();
