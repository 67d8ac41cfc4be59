// The copy of the program that a self-update moves aside. UI thread at start-up, unless said otherwise.
#pragma once

// Removes the copy after an update. The program that was updated may still be ending, and can't be removed before it has:
// that is waited for, one second at most.
void RemoveReplacedProgram();

// Where an update was interrupted between its two steps, the copy is all that is left; started under its own name, it
// takes the program's place again. To be called before app.exePath is used.
void RestoreReplacedProgram();

// Removes a copy that an interrupted update left beside a whole program. Manifest thread, once it is clear that no update
// is under way.
void RemoveForgottenCopy();
