// Reading the registry.
#pragma once

#include <windows.h>

#include <optional>
#include <string>

#include "system/handles.h"

// A key below HKEY_LOCAL_MACHINE, opened for reading in the 32-bit view or, where that fails, in the plain one; null
// when neither works.
RegKey OpenMachineKey32(const wchar_t* path);

// A text value (REG_SZ) of at most kMaxPathLength characters; nothing when it is missing, of another type or longer.
// `subkey` may be null.
std::optional<std::wstring> ReadRegistryText(HKEY key, const wchar_t* subkey, const wchar_t* value);
