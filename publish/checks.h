// Everything that `check` looks for. Each check is one function with a name, stands in one of the tables below, and
// knows nothing of the others.
#pragma once

#include <span>
#include <string_view>

#include "findings.h"
#include "manifest_file.h"
#include "package_file.h"

// About the document as a text. Runs whatever the file holds.
struct TextCheck {
  std::string_view name;
  void (*run)(const ManifestFile& manifest, const Reporter& report);
};
std::span<const TextCheck> TextChecks();

// About a document with a root: its elements, the source catalogue, the updater, packages among each other.
struct DocumentCheck {
  std::string_view name;
  void (*run)(const ManifestFile& manifest, const Reporter& report);
};
std::span<const DocumentCheck> StructureChecks();
std::span<const DocumentCheck> CatalogueChecks();
std::span<const DocumentCheck> UpdaterChecks();
std::span<const DocumentCheck> IdentifierChecks();

// About one package.
struct PackageCheck {
  std::string_view name;
  void (*run)(const PackageEntry& entry, const ManifestFile& manifest, const Reporter& report);
};
std::span<const PackageCheck> ValueChecks();
std::span<const PackageCheck> TaskChecks();
std::span<const PackageCheck> SourceChecks();

// About one package and its file.
struct FileCheck {
  std::string_view name;
  void (*run)(const PackageEntry& entry, const PackageFile& file, const Reporter& report);
};
std::span<const FileCheck> FileChecks();
std::span<const FileCheck> ArchiveChecks();
