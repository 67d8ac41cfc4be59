// Bringing one package file into the folder for temporary files, and proving it.
#pragma once

#include <string>

#include "install/run_state.h"
#include "manifest/manifest_model.h"

enum class DownloadOutcome {
  Done,         // the file is there and right
  Redo,         // the manifest was fetched again: the same place of the list once more, with the new package
  FailedRetry,  // every source failed and the user wants to try again
  FailedStop,   // every source failed and the user gave up; app.cancelRequested is set
  Cancelled,
};

// Downloads package number `index` (from 0) of `count`. Worker.
DownloadOutcome DownloadPackage(RunState& run, const Package& package, size_t index, size_t count);

// Whether this run has proven the file of exactly this package: of this name, size and hash. Only such a file may be
// placed or started.
bool IsProven(const RunState& run, const Package& package);
