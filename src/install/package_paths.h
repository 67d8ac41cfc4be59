// Where a package's files are and go. Worker.
#pragma once

#include <string>

#include "install/run_state.h"
#include "manifest/manifest_model.h"

// The file in the run's folder for temporary files, and its resume record.
std::wstring PackageFilePath(const RunState& run, const std::string& filename);
std::wstring StatRecordPath(const std::wstring& packageFilePath);

// The folder that the package goes into; empty when there is none. A folder below the installation folder is created;
// when that fails, the placement tells why.
std::wstring ResolveTargetFolder(const RunState& run, const Package& package);
