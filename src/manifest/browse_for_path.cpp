#include "manifest/browse_for_path.h"

bool BrowseForPath(HWND, BrowseMode) {
  return false;
}
