#include "check.h"

#include <algorithm>
#include <map>

#include "checks.h"
#include "package_types.h"
#include "system/path_names.h"
#include "system/text.h"
#include "task_paths.h"

namespace {

// The arguments of one run over a manifest.
struct Run {
  const ManifestFile& manifest;
  const CheckOptions& options;
  Findings& findings;
  std::map<std::pair<std::string, std::wstring>, std::set<std::string>> placesOfTargets = {};  // by folder and name
};

// Calls run(check, reporter) for each check of a table that isn't skipped.
template <typename Check, typename RunCheck>
void RunChecks(Run& run, std::span<const Check> checks, std::string_view subject, RunCheck runCheck) {
  for (const Check& check : checks) {
    if (!run.options.skipped.contains(check.name)) runCheck(check, Reporter(run.findings, check.name, subject));
  }
}

void RunDocumentChecks(Run& run, std::span<const DocumentCheck> checks) {
  RunChecks(run, checks, "",
            [&](const DocumentCheck& check, const Reporter& report) { check.run(run.manifest, report); });
}

void RunPackageChecks(Run& run, std::span<const PackageCheck> checks, const PackageEntry& entry) {
  RunChecks(run, checks, entry.package.filename,
            [&](const PackageCheck& check, const Reporter& report) { check.run(entry, run.manifest, report); });
}

void RunFileChecks(Run& run, std::span<const FileCheck> checks, const PackageEntry& entry, const PackageFile& file) {
  RunChecks(run, checks, entry.package.filename,
            [&](const FileCheck& check, const Reporter& report) { check.run(entry, file, report); });
}

// The progress of one package, which tells also how far the whole manifest is.
Progress ProgressOf(const Run& run, const PackageEntry& entry) {
  if (!run.options.progress) return {};
  const auto& packages = run.manifest.packages;
  const std::string place = std::to_string(&entry - packages.data() + 1) + "/" + std::to_string(packages.size()) + "  ";
  return [place, &run](const std::string& what, uint64_t done, uint64_t total) {
    run.options.progress(place + what, done, total);
  };
}

// Another name would be looked for elsewhere; its own check tells of it.
bool IsPlainFileName(const std::string& name) { return IsSafeFileName(WidenBytes(name)); }

// An installer program may bring anything; of it nothing is asked.
bool LacksPlaces(const PackageEntry& entry, const PackageFile& file) {
  const Package& package = entry.package;
  if (package.filetype == kInstallerType) return false;
  const std::vector<TaskPath> paths = TaskPathsOf(entry);
  return std::any_of(paths.begin(), paths.end(), [&](const TaskPath& task) {
    const std::string place = ComparablePath(task.path);
    return package.filetype == kZipType ? !file.archive.places.contains(place)
                                        : place != ComparablePath(package.filename);
  });
}

// What all packages with the same target bring there. Packages of one game may be many, so it is put together once.
const std::set<std::string>& PlacesOfTarget(Run& run, const Package& package) {
  const auto [found, isNew] = run.placesOfTargets.try_emplace({package.folder, package.name});
  if (!isNew) return found->second;
  for (const PackageEntry& entry : run.manifest.packages) {
    const Package& other = entry.package;
    if (other.folder != package.folder || other.name != package.name || !IsPlainFileName(other.filename)) continue;
    if (other.filetype == kZipType) {
      const std::string path = PackagePath(*run.options.filesFolder, other);
      found->second.merge(SurveyArchive(path, "", Unpack::No, ProgressOf(run, entry)).places);
    } else {
      found->second.insert(ComparablePath(other.filename));
    }
  }
  return found->second;
}

void CheckPackageFile(Run& run, const PackageEntry& entry) {
  const Package& package = entry.package;
  if (!run.options.filesFolder || !IsPlainFileName(package.filename)) return;
  PackageFile file = SurveyPackageFile(PackagePath(*run.options.filesFolder, package), package.filetype == kZipType,
                                       package.password, ProgressOf(run, entry));
  if (LacksPlaces(entry, file)) file.placesOfTarget = &PlacesOfTarget(run, package);
  RunFileChecks(run, FileChecks(), entry, file);
  RunFileChecks(run, ArchiveChecks(), entry, file);
}

template <typename Check>
void AddNames(std::span<const Check> checks, std::vector<std::string_view>& names) {
  for (const Check& check : checks) names.push_back(check.name);
}

}  // namespace

Findings CheckManifest(const ManifestFile& manifest, const CheckOptions& options) {
  Findings findings{manifest.path, {}};
  Run run{manifest, options, findings};
  RunChecks(run, TextChecks(), "",
            [&](const TextCheck& check, const Reporter& report) { check.run(manifest, report); });
  if (manifest.document.Error()) return findings;
  RunDocumentChecks(run, StructureChecks());
  if (!manifest.root) return findings;
  RunDocumentChecks(run, CatalogueChecks());
  RunDocumentChecks(run, UpdaterChecks());
  RunDocumentChecks(run, IdentifierChecks());
  for (const PackageEntry& entry : manifest.packages) {
    RunPackageChecks(run, ValueChecks(), entry);
    RunPackageChecks(run, TaskChecks(), entry);
    RunPackageChecks(run, SourceChecks(), entry);
    CheckPackageFile(run, entry);
  }
  return findings;
}

std::vector<std::string_view> CheckNames() {
  std::vector<std::string_view> names;
  AddNames(TextChecks(), names);
  AddNames(StructureChecks(), names);
  AddNames(CatalogueChecks(), names);
  AddNames(UpdaterChecks(), names);
  AddNames(IdentifierChecks(), names);
  AddNames(ValueChecks(), names);
  AddNames(TaskChecks(), names);
  AddNames(SourceChecks(), names);
  AddNames(FileChecks(), names);
  AddNames(ArchiveChecks(), names);
  return names;
}

std::string PackagePath(const std::string& folder, const Package& package) {
  return folder.ends_with('/') ? folder + package.filename : folder + "/" + package.filename;
}
