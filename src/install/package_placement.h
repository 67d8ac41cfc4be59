// Putting a downloaded package where it belongs. Worker.
#pragma once

#include <cstdint>
#include <string>

#include "install/installation.h"
#include "manifest/manifest_model.h"

// The folder that the package goes into; empty when there is none. A folder below the installation folder is created;
// when that fails, PlacePackage tells why.
std::wstring ResolveTargetFolder(const Installation& run, const Package& package);

struct PlacementResult {
  bool ok = false;
  // app.cancelRequested was found set after the extraction or copy: nothing further was done.
  bool cancelled = false;
  uint32_t error = 0;  // the system error that made it fail, 0 when there was none
};

// Extracts, copies or runs the package, runs its installer program and checks its verify list. An installer program
// that is ended by app.cancelRequested counts as placed. A package that names a path outside its folder is refused.
PlacementResult PlacePackage(Installation& run, const Package& package, const std::wstring& target);
