// What the fuzzers share. Each is a source of its own: it hands bytes to what reads what others wrote, and requires
// what must hold whatever they are. That nothing is read or written beyond its memory, the sanitizers watch.
#pragma once

#include <string>
#include <string_view>

// Ends the process and says what doesn't hold, unless it holds.
void Require(bool holds, const char* what);

// One input; each fuzzer defines it. Nothing may be left from one to the next.
void FuzzOne(const std::string& input);

// The lines of an input, for what takes more than one text. The last one has all that is left.
std::string TakeLine(std::string_view& rest);

// Whether Windows would take this path, relative to a folder, for a place outside of it, or for no plain place at all:
// another drive, a stream, a device's name space. Knows nothing of the program's own rules.
bool LeadsOut(std::wstring_view path);
