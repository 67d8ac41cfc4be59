// Removing a folder.
#pragma once

#include <string>

// Removes the folder with everything in it, read-only files too. A junction or link is removed without a look at what
// it leads to; what can't be removed stays, and the rest goes nevertheless. A volume's root, however it is named, and a
// relative path are left alone.
void RemoveFolder(const std::wstring& path);
