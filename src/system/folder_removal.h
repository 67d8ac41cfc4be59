// Removing a folder.
#pragma once

#include <cstdint>
#include <string>

// Removes the folder with everything in it, read-only files too. A junction or link is removed without a look at what
// it leads to; what can't be removed stays, and the rest goes nevertheless. A volume's root, however it is named, and a
// relative path are left alone. Returns 0 when the folder is gone, else an error that tells why it isn't.
uint32_t RemoveFolder(const std::wstring& path);
