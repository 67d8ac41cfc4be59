// The plain values of one package.
#include <optional>
#include <string>

#include "ascii.h"
#include "checks.h"
#include "install/manifest_paths.h"
#include "package_types.h"

namespace {

void CheckTitle(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  if (entry.package.title.empty()) report.Error(entry.LineOf("title"), "there is no title, so its row would be empty");
}

void CheckGroup(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  if (!entry.package.group.empty()) return;
  report.Warning(entry.LineOf("group"), "there is no group, so the row stands outside of all groups");
}

void CheckNumber(const PackageEntry& entry, const char* name, const char* consequence, const Reporter& report) {
  if (entry.LacksValue(name)) return;
  const tinyxml2::XMLElement* element = entry.Child(name);
  if (!element) return report.Error(entry.LineOf(name), std::string("there is no ") + name + consequence);
  const std::string text = AttributeOf(*element, "value");
  const auto number = WholeNumber(text);
  if (!number) {
    report.Error(entry.LineOf(name), std::string(name) + " " + Quoted(text) + " is not a number of bytes");
  } else if (*number == 0) {
    report.Error(entry.LineOf(name), std::string(name) + " is 0" + consequence);
  }
}

void CheckSize(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  // Without an md5 whatever arrives is taken.
  const char* consequence = entry.package.md5.empty() ? "; the player isn't told how much there is to download"
                                                      : "; every download would count as a mismatch";
  CheckNumber(entry, "size", consequence, report);
}

void CheckUpsize(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  CheckNumber(entry, "upsize", ", so the player isn't told what it takes on his disk", report);
}

void CheckMd5(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  if (entry.LacksValue("md5")) return;
  const int line = entry.LineOf("md5");
  if (const std::string fault = Md5Fault(entry.package.md5); !fault.empty()) report.Error(line, fault);
}

void CheckMd5Presence(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  if (!entry.package.md5.empty() || entry.LacksValue("md5")) return;
  report.Warning(entry.LineOf("md5"), "there is no md5: whatever arrives counts as right, and no download is resumed");
}

void CheckFiletype(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  const std::string& filetype = entry.package.filetype;
  const int line = entry.LineOf("filetype");
  if (filetype.empty() && LowerAscii(entry.package.filename).ends_with(".zip") && !entry.LacksValue("filetype")) {
    report.Warning(line,
                   std::string("without a filetype the archive is copied as it is; to unpack it, write ") + kZipType);
  }
  if (filetype.empty() || filetype == kZipType || filetype == kInstallerType) return;
  report.Error(line, "filetype " + Quoted(filetype) + " is unknown, so the file would be copied as it is: write " +
                         kZipType + ", " + kInstallerType + ", or none for a file that is to be copied");
}

void CheckInstaller(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  if (entry.package.filetype != kInstallerType || !entry.package.install.empty()) return;
  report.Error(entry.LineOf("filetype"), "an installer program needs an <install> task, without which it never starts");
}

void CheckTarget(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  const Package& package = entry.package;
  if (package.name.empty() && package.folder.empty() && !entry.LacksValue("name") && !entry.LacksValue("folder")) {
    report.Error(entry.element->GetLineNum(), "there is neither a name nor a folder, so it has no place to go");
  } else if (!package.name.empty() && !package.folder.empty()) {
    report.Warning(entry.LineOf("name"), "name has no effect beside a folder");
  }
}

void CheckFolder(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  const std::string& folder = entry.package.folder;
  if (folder.empty() || IsKnownFolder(folder)) return;
  report.Error(entry.LineOf("folder"),
               "folder " + Quoted(folder) +
                   " is unknown; it must be {gtasa_folder}, {mtasa_folder}, {mtasa_cache_folder} or the number of a " +
                   "Windows folder such as {5}, and nothing else");
}

bool IsNameWithoutEffect(const Package& package) { return !package.folder.empty(); }

void CheckName(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  if (IsNameWithoutEffect(entry.package)) return;
  if (!StaysInside(entry.package.name)) {
    report.Error(entry.LineOf("name"), "the name is no folder below the installation folder; the installer refuses it");
  }
}

void CheckNameAscii(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  if (IsNameWithoutEffect(entry.package)) return;
  const tinyxml2::XMLElement* name = entry.Child("name");
  if (name && !IsAscii(AttributeOf(*name, "value"))) {
    report.Warning(entry.LineOf("name"),
                   "letters beyond ASCII in the name are taken byte by byte and look wrong on disk");
  }
}

void CheckDefault(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  const tinyxml2::XMLElement* element = entry.Child("default");
  if (!element || entry.LacksValue("default")) return;
  const std::string value = AttributeOf(*element, "value");
  if (value == "true" || value == "false") return;
  report.Error(entry.LineOf("default"), "default " + Quoted(value) + " must be exactly \"true\" or \"false\"");
}

// The password itself is never quoted.
void CheckPassword(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  const Package& package = entry.package;
  if (package.password.empty()) return;
  if (package.filetype != kZipType) {
    report.Warning(entry.LineOf("password"), "a password has no effect on a package that isn't unpacked");
  } else if (!IsAscii(package.password)) {
    report.Warning(entry.LineOf("password"),
                   "letters beyond ASCII in a password depend on the tool that packed with it");
  }
}

constexpr PackageCheck kChecks[] = {
    {"title", CheckTitle},       {"group", CheckGroup},
    {"size", CheckSize},         {"upsize", CheckUpsize},
    {"md5", CheckMd5},           {"md5-missing", CheckMd5Presence},
    {"filetype", CheckFiletype}, {"installer", CheckInstaller},
    {"target", CheckTarget},     {"folder", CheckFolder},
    {"name", CheckName},         {"name-ascii", CheckNameAscii},
    {"default", CheckDefault},   {"password", CheckPassword},
};

}  // namespace

std::span<const PackageCheck> ValueChecks() { return kChecks; }
