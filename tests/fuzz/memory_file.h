// The input as a file, for what opens it by name: the zip library finds it under kMemoryFile, without the system's
// help, which would take most of the time.
#pragma once

#include <string>

inline constexpr char kMemoryFile[] = "the input";

// What the file holds from now on; it is not copied.
void SetMemoryFile(const std::string& bytes);
