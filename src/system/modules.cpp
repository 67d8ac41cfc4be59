#include "system/modules.h"

#include "system/files.h"

HMODULE LoadSystemModule(const wchar_t* name) {
  // The full path makes the loader look beside that file for its own imports too, not beside this program.
  return LoadLibraryExW(SystemFilePath(name).c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
}
