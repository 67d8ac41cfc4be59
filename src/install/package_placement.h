// Putting a downloaded package where it belongs. Worker.
#pragma once

#include <string>

#include "install/run_state.h"
#include "manifest/manifest_model.h"

// Extracts, copies or runs the package, runs its installer program and checks its verify list. When
// app.cancelRequested is set after the extraction or copy, it returns at once and not ok, whatever was placed; set
// later, it ends the installer program, and the package counts as placed.
PlacementResult PlacePackage(RunState& run, const Package& package, const std::wstring& target);
