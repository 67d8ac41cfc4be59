// The command `check`: everything that can be said of a manifest without asking the site.
#pragma once

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "findings.h"
#include "manifest_file.h"
#include "package_file.h"

struct CheckOptions {
  // Where the packages lie under their identifiers; none: they aren't looked at.
  std::optional<std::string> filesFolder = {};
  std::set<std::string, std::less<>> skipped = {};  // names of checks that are not to run
  Progress progress = {};
};

// Runs every check that isn't skipped.
Findings CheckManifest(const ManifestFile& manifest, const CheckOptions& options);

// The names of all checks, in the order in which they run.
std::vector<std::string_view> CheckNames();

// The package's file in the folder, as `check` looks at it.
std::string PackagePath(const std::string& folder, const Package& package);
