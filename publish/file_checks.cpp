// A package's file against what the manifest says of it.
#include <algorithm>
#include <set>
#include <string>

#include "ascii.h"
#include "checks.h"
#include "install/package_texts.h"
#include "package_types.h"
#include "system/path_names.h"
#include "system/text.h"
#include "task_paths.h"

namespace {

std::string Bytes(uint64_t count) { return std::to_string(count) + " bytes"; }

void CheckExistence(const PackageEntry& entry, const PackageFile& file, const Reporter& report) {
  if (!file.exists) report.Error(entry.LineOf("filename"), "there is no file " + Quoted(file.path));
}

void CheckSize(const PackageEntry& entry, const PackageFile& file, const Reporter& report) {
  const auto size = static_cast<uint64_t>(entry.package.size);
  if (!file.exists || size == file.size) return;
  report.Error(entry.LineOf("size"), "size says " + std::to_string(size) + ", but the file has " + Bytes(file.size));
}

void CheckMd5(const PackageEntry& entry, const PackageFile& file, const Reporter& report) {
  if (!file.exists || entry.package.md5.empty()) return;
  if (file.md5.empty()) {
    report.Error(entry.LineOf("md5"), "the file can't be read to its end");
  } else if (LowerAscii(entry.package.md5) != file.md5) {
    report.Error(entry.LineOf("md5"), "md5 is not the file's, which is " + file.md5);
  }
}

void CheckUpsize(const PackageEntry& entry, const PackageFile& file, const Reporter& report) {
  const auto upsize = static_cast<uint64_t>(entry.package.upsize);
  const int line = entry.LineOf("upsize");
  if (file.archive.isArchive && upsize != file.archive.unpackedSize) {
    report.Error(line, "upsize says " + std::to_string(upsize) + ", but the archive unpacks to " +
                           Bytes(file.archive.unpackedSize));
  }
  const bool copied = entry.package.filetype != kZipType && entry.package.filetype != kInstallerType;
  if (file.exists && copied && upsize != file.size) {
    report.Warning(
        line, "upsize says " + std::to_string(upsize) + ", but the file is copied as it is, with " + Bytes(file.size));
  }
}

constexpr FileCheck kFileChecks[] = {
    {"file", CheckExistence},
    {"file-size", CheckSize},
    {"file-md5", CheckMd5},
    {"file-upsize", CheckUpsize},
};

// Tells about the first few entries that are at fault, and how many more there are.
template <typename Fault>
void ReportEntries(const PackageEntry& entry, const PackageFile& file, const Reporter& report, Severity severity,
                   const std::string& message, Fault fault) {
  constexpr size_t kShown = 3;
  const int line = entry.LineOf("filename");
  size_t count = 0;
  for (const ArchiveEntry& candidate : file.archive.entries) {
    if (!fault(candidate) || ++count > kShown) continue;
    report.Tell(severity, line, "entry " + Quoted(candidate.info.name) + " " + message);
  }
  if (count > kShown) report.Tell(severity, line, std::to_string(count - kShown) + " more entries: each " + message);
}

void CheckOpens(const PackageEntry& entry, const PackageFile& file, const Reporter& report) {
  if (!file.exists || entry.package.filetype != kZipType || file.archive.isArchive) return;
  report.Error(entry.LineOf("filename"), "the file is no zip archive");
}

void CheckContent(const PackageEntry& entry, const PackageFile& file, const Reporter& report) {
  if (!file.archive.isArchive) return;
  if (!file.archive.complete) report.Error(entry.LineOf("filename"), "the archive's list of entries is damaged");
  ReportEntries(entry, file, report, Severity::Error, "is damaged",
                [](const ArchiveEntry& e) { return e.opened == 0 && !e.unpacked; });
}

// AES comes as a method of its own, with the true one elsewhere.
bool IsForeignEncryption(const ZipEntry& info) {
  constexpr uint32_t kMethodAes = 99;
  return info.encryption == ZipEncryption::Strong || info.method == kMethodAes;
}

bool IsForeignMethod(const ZipEntry& info) {
  return info.method != 0 && info.method != 8 && !IsForeignEncryption(info);
}

void CheckMethods(const PackageEntry& entry, const PackageFile& file, const Reporter& report) {
  ReportEntries(entry, file, report, Severity::Error,
                "is packed in a way that the installer can't unpack; pack with \"deflate\" or without compression",
                [](const ArchiveEntry& e) { return IsForeignMethod(e.info); });
}

void CheckEncryption(const PackageEntry& entry, const PackageFile& file, const Reporter& report) {
  ReportEntries(entry, file, report, Severity::Error,
                "is encrypted in a way that the installer can't undo; use the traditional zip encryption (ZipCrypto)",
                [](const ArchiveEntry& e) { return IsForeignEncryption(e.info); });
}

void CheckPassword(const PackageEntry& entry, const PackageFile& file, const Reporter& report) {
  const bool hasPassword = !entry.package.password.empty();
  ReportEntries(
      entry, file, report, Severity::Error,
      hasPassword ? "doesn't open with the manifest's password" : "is encrypted, but the manifest has no password",
      [](const ArchiveEntry& e) { return e.opened == kZipWrongPassword; });
  const auto& entries = file.archive.entries;
  const auto isEncrypted = [](const ArchiveEntry& e) { return e.info.encryption != ZipEncryption::None; };
  if (hasPassword && file.archive.isArchive && std::none_of(entries.begin(), entries.end(), isEncrypted)) {
    report.Warning(entry.LineOf("password"), "there is a password, but nothing in the archive is encrypted");
  }
}

// Whatever else keeps an entry from being opened.
void CheckEntriesOpen(const PackageEntry& entry, const PackageFile& file, const Reporter& report) {
  ReportEntries(entry, file, report, Severity::Error, "can't be opened", [](const ArchiveEntry& e) {
    return e.opened != 0 && e.opened != kZipWrongPassword && !IsForeignMethod(e.info) && !IsForeignEncryption(e.info);
  });
}

void CheckEntryNames(const PackageEntry& entry, const PackageFile& file, const Reporter& report) {
  ReportEntries(entry, file, report, Severity::Error,
                "has a name that the installer refuses: it leads out of the folder or is none",
                [](const ArchiveEntry& e) { return !e.IsFolder() && !IsSafeRelativePath(EntryPath(e.info.name)); });
}

void CheckEntryNamesAscii(const PackageEntry& entry, const PackageFile& file, const Reporter& report) {
  ReportEntries(entry, file, report, Severity::Warning,
                "has letters beyond ASCII in its name, which are taken byte by byte",
                [](const ArchiveEntry& e) { return !IsAscii(e.info.name); });
}

void CheckRepeatedEntries(const PackageEntry& entry, const PackageFile& file, const Reporter& report) {
  std::set<std::string> seen;
  ReportEntries(
      entry, file, report, Severity::Error,
      "is the same file as one before it (on Windows, letter case makes no difference); only the last one stays",
      [&](const ArchiveEntry& e) { return !e.IsFolder() && !seen.insert(ComparablePath(e.info.name)).second; });
}

void CheckLongPaths(const PackageEntry& entry, const PackageFile& file, const Reporter& report) {
  const std::wstring folder = JoinPath(L"C:\\Games", entry.package.name);
  ReportEntries(
      entry, file, report, Severity::Warning,
      "has so long a name that in a folder like C:\\Games the path exceeds what Windows takes (259 characters)",
      [&](const ArchiveEntry& e) { return JoinPath(folder, EntryPath(e.info.name)).size() > kMaxPathLength; });
}

// All entries stand in one folder, and below it is what was looked for.
std::string LoneFolderOver(const std::string& place, const Archive& archive) {
  if (archive.places.empty()) return "";
  const std::string& first = *archive.places.begin();
  const std::string folder = first.substr(0, first.find('\\'));
  const auto inside = [&](const std::string& other) { return other == folder || other.starts_with(folder + "\\"); };
  const bool lone = std::all_of(archive.places.begin(), archive.places.end(), inside);
  return lone && archive.places.contains(folder + "\\" + place) ? folder : "";
}

std::string WhyMissing(const std::string& place, const Archive& archive) {
  if (const std::string folder = LoneFolderOver(place, archive); !folder.empty()) {
    return "; it stands below " + Quoted(folder + "/") + ": pack what is in that folder, without the folder itself";
  }
  const auto isPlace = [&](const ArchiveEntry& e) { return ComparablePath(e.info.name) == place; };
  const bool empty = std::any_of(archive.entries.begin(), archive.entries.end(), isPlace);
  return empty ? "; the archive has it, but empty, and the installer creates neither empty files nor empty folders"
               : "";
}

bool IsBroughtByOthers(const PackageFile& file, const std::string& place) {
  return file.placesOfTarget && file.placesOfTarget->contains(place);
}

// An installer program may bring what nobody can know here, and a folder of a game may hold it already.
void CheckTaskPaths(const PackageEntry& entry, const PackageFile& file, const Reporter& report) {
  const Package& package = entry.package;
  if (!file.archive.isArchive) return;
  for (const TaskPath& task : TaskPathsOf(entry)) {
    const std::string place = ComparablePath(task.path);
    if (place.empty() || file.archive.places.contains(place) || IsBroughtByOthers(file, place)) continue;
    if (!package.install.empty() && task.element != "install") continue;
    const std::string message = "<" + task.element + "> names " + Quoted(task.path) + ", which is not in the archive" +
                                WhyMissing(place, file.archive);
    package.folder.empty() ? report.Error(task.line, message) : report.Warning(task.line, message);
  }
}

bool IsFolder(const Archive& archive, const std::string& place) {
  const auto inside = archive.places.lower_bound(place + "\\");
  return inside != archive.places.end() && inside->starts_with(place + "\\");
}

void CheckProgramsAreFiles(const PackageEntry& entry, const PackageFile& file, const Reporter& report) {
  for (const TaskPath& task : TaskPathsOf(entry)) {
    if (task.element == "verify" || !IsFolder(file.archive, ComparablePath(task.path))) continue;
    report.Error(task.line, "<" + task.element + "> names " + Quoted(task.path) + ", which is a folder");
  }
}

void CheckFilesAreNoFolders(const PackageEntry& entry, const PackageFile& file, const Reporter& report) {
  ReportEntries(
      entry, file, report, Severity::Error, "is a file, but other entries take it for a folder",
      [&](const ArchiveEntry& e) { return e.info.size != 0 && IsFolder(file.archive, ComparablePath(e.info.name)); });
}

// A copied file is all there is.
void CheckCopiedPaths(const PackageEntry& entry, const PackageFile& file, const Reporter& report) {
  const Package& package = entry.package;
  if (package.filetype == kZipType || package.filetype == kInstallerType || !package.install.empty()) return;
  for (const TaskPath& task : TaskPathsOf(entry)) {
    const std::string place = ComparablePath(task.path);
    if (place.empty() || place == ComparablePath(package.filename) || IsBroughtByOthers(file, place)) continue;
    const std::string message = "<" + task.element + "> names " + Quoted(task.path) +
                                ", but the package is one file, " + Quoted(package.filename);
    package.folder.empty() ? report.Error(task.line, message) : report.Warning(task.line, message);
  }
}

constexpr FileCheck kArchiveChecks[] = {
    {"archive", CheckOpens},
    {"archive-content", CheckContent},
    {"archive-method", CheckMethods},
    {"archive-encryption", CheckEncryption},
    {"archive-password", CheckPassword},
    {"archive-entry", CheckEntriesOpen},
    {"archive-name", CheckEntryNames},
    {"archive-name-ascii", CheckEntryNamesAscii},
    {"archive-repeated", CheckRepeatedEntries},
    {"archive-long-path", CheckLongPaths},
    {"archive-path", CheckTaskPaths},
    {"archive-program", CheckProgramsAreFiles},
    {"archive-folder", CheckFilesAreNoFolders},
    {"file-path", CheckCopiedPaths},
};

}  // namespace

std::span<const FileCheck> FileChecks() { return kFileChecks; }
std::span<const FileCheck> ArchiveChecks() { return kArchiveChecks; }
