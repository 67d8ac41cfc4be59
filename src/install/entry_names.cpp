#include "install/entry_names.h"

#include <algorithm>

#include "system/text.h"

std::wstring EntryPath(std::string_view entryName) {
  std::wstring path = WidenBytes(entryName);
  std::replace(path.begin(), path.end(), L'/', L'\\');
  return path;
}
