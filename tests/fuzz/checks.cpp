// What zendora-publish says of a manifest, beside what the installer would make of it.
#include "check.h"

#include <algorithm>

#include "app/command_line.h"
#include "fill.h"
#include "fuzz/fuzzing.h"
#include "install/manifest_paths.h"

namespace {

// The installer takes what the tool has nothing to say about.
void RequireAccepted(const ManifestFile& manifest) {
  for (const PackageEntry& entry : manifest.packages) {
    const Package& package = entry.package;
    Require(!FindUnsafePath(package), "no path of a good package is refused");
    Require(ReadCommandLine(InstallCommandLine({package.filename}, "")).installList == std::vector{package.filename},
            "a good package can be installed by an elevated instance");
  }
}

}  // namespace

void FuzzOne(const std::string& input) {
  const auto manifest = ParseManifestText("manifest.xml", input);
  const Findings findings = CheckManifest(*manifest, {});
  for (const Finding& finding : findings.list) Require(!finding.message.empty(), "a finding says something");
  if (manifest->root) {
    const Filled filled = FillManifest(*manifest, "/nonexistent", {});
    Require(filled.text == input && filled.changes.empty(), "what has no files stays as it is");
  }
  if (CountOf(findings, Severity::Error) == 0) RequireAccepted(*manifest);
}
