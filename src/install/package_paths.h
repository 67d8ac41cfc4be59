// Where a package goes, and which of its paths may be used there. Worker.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "install/run_state.h"
#include "manifest/manifest_model.h"

// The file in the run's folder for temporary files, and its resume record.
std::wstring PackageFilePath(const RunState& run, const std::string& filename);
std::wstring StatRecordPath(const std::wstring& packageFilePath);

// The first path of the package that would lead out of the folder it belongs to; nothing when all may be used. Nothing
// of a package may be placed, written to the registry or started before this has been asked. Its `filename` is looked
// at too, as a plain file name.
std::optional<std::wstring> FindUnsafePath(const Package& package);

// The folder that the package goes into; empty when there is none. A folder below the installation folder is created;
// when that fails, the placement tells why.
std::wstring ResolveTargetFolder(const RunState& run, const Package& package);

// A path that the manifest names, below `target`; the folder itself for an empty one. "." components, doubled
// separators and those at the beginning don't count.
std::wstring PathInTarget(const std::wstring& target, std::string_view path);
