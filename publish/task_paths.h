// The paths that a package names below its target folder.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "manifest_file.h"

struct TaskPath {
  std::string element;  // "verify", "link", "install" or "execute"
  std::string path;     // the manifest's bytes
  int line = 0;
};

// In the order above; `verify` gives one for each of its pieces.
std::vector<TaskPath> TaskPathsOf(const PackageEntry& entry);

// The path as the program's file system takes it: "\" between components, without empty ones and ".", in lower case.
// Two paths with the same text are the same place.
std::string ComparablePath(std::string_view path);
