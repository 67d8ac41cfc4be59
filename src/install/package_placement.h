// Putting a downloaded package where it belongs. Worker.
#pragma once

#include <cstdint>
#include <string>

#include "install/installation.h"
#include "manifest/manifest_model.h"

// The folder that the package goes into, created unless it belongs to a game that is already there; empty when there is
// none.
std::wstring ResolveTargetFolder(const Installation& run, const Package& package);

struct PlacementResult {
  bool ok = false;
  uint32_t error = 0;  // the system error that made it fail, 0 when there was none
};

// Extracts, copies or runs the package, runs its installer program and checks its verify list. When app.cancelRequested
// is set meanwhile it returns early.
PlacementResult PlacePackage(Installation& run, const Package& package, const std::wstring& target);
