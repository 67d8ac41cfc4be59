// Modules and functions that are looked up at run time.
#pragma once

#include <windows.h>

// A module of the system folder, loaded from there and from nowhere else, or null. `name` has no path.
// The module stays loaded for the life of the process.
HMODULE LoadSystemModule(const wchar_t* name);

// A function that a loaded module exports under a name, or under MAKEINTRESOURCEA(ordinal); null when it doesn't.
template <typename Function>
Function FindFunction(HMODULE module, const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}
