// Putting a downloaded package where it belongs. Worker.
#pragma once

#include <string>

#include "install/installation.h"
#include "manifest/manifest_model.h"

// The folder that the package goes into; empty when there is none. A folder below the installation folder is created;
// when that fails, PlacePackage tells why.
std::wstring ResolveTargetFolder(const Installation& run, const Package& package);

// Whether all paths that the package names stay inside its folder; the log tells which one doesn't. To be asked before
// anything is done for the package.
bool PathsStayInside(const Package& package);

// Extracts, copies or runs the package, runs its installer program and checks its verify list. When
// app.cancelRequested is set after the extraction or copy, it returns at once and not ok, whatever was placed; set
// later, it ends the installer program, and the package counts as placed.
PlacementResult PlacePackage(Installation& run, const Package& package, const std::wstring& target);
