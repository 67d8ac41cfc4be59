// The command `fill`: puts what only the files can tell into a manifest.
#pragma once

#include <string>
#include <vector>

#include "disk.h"
#include "manifest_file.h"

struct Change {
  int line = 0;
  std::string package, element;
  std::string before, after;
};

struct Filled {
  std::string text;  // the manifest, with every byte as it was but for the changes
  std::vector<Change> changes;
  std::vector<std::string> problems;  // packages that could not be filled, and why
};

// Looks at each package's file in the folder and corrects `size`, `md5` and, but for installer programs, `upsize` where
// the package has such an element. The manifest must be well-formed.
Filled FillManifest(const ManifestFile& manifest, const std::string& filesFolder, const Progress& progress);
