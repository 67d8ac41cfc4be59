// Unpacking a package's zip archive. Worker.
#pragma once

#include <string>

#include "install/installation.h"
#include "manifest/manifest_model.h"

// Unpacks into `target`, over what is there, until app.cancelRequested is set. Ok when at least 99 % of the package's
// `upsize` were written; of a package without `upsize`, when nothing went wrong. Shows its progress, writes the
// package's statistics and, unless it is ok, an error record.
PlacementResult ExtractZip(Installation& run, const Package& package, const std::wstring& target);
