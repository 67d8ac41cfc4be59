// Unpacking a package's zip archive. Worker.
#pragma once

#include <string>

#include "install/run_state.h"
#include "manifest/manifest_model.h"

// Unpacks into `target`, over what is there, until app.cancelRequested is set. Ok when at least 99 % of the package's
// `upsize` were written, or when a file that is in use was there in the right size already; of a package without
// `upsize`, when nothing went wrong. Logs, shows its progress, writes the package's statistics and, unless it is ok, an
// error record.
PlacementResult ExtractZip(RunState& run, const Package& package, const std::wstring& target);
