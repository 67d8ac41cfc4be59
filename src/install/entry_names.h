// Names inside zip archives. No Windows header: also built natively.
#pragma once

#include <string>
#include <string_view>

// The entry's path below the target folder: one wide character per byte, "\" between components.
std::wstring EntryPath(std::string_view entryName);
