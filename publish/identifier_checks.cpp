// Packages among each other: their identifiers, which are also names of files in one folder, words of a command line
// and keys of reports.
#include <algorithm>
#include <map>
#include <string>

#include "ascii.h"
#include "checks.h"
#include "system/path_names.h"
#include "system/text.h"

namespace {

constexpr std::string_view kRecordExtension = ".stat";

// Calls `visit` with each package that has an identifier, its line and what it is called.
template <typename Visitor>
void ForEachIdentifier(const ManifestFile& manifest, Visitor visit) {
  for (const PackageEntry& entry : manifest.packages) {
    const std::string& identifier = entry.package.filename;
    if (!identifier.empty()) visit(identifier, entry.LineOf("filename"));
  }
}

void CheckPresence(const ManifestFile& manifest, const Reporter& report) {
  for (const PackageEntry& entry : manifest.packages) {
    if (!entry.package.filename.empty() || entry.LacksValue("filename")) continue;
    report.Error(entry.LineOf("filename"), "the package has no filename, so it can't be downloaded");
  }
}

void CheckUniqueness(const ManifestFile& manifest, const Reporter& report) {
  std::map<std::string, int> lines;
  ForEachIdentifier(manifest, [&](const std::string& identifier, int line) {
    const auto [first, isNew] = lines.try_emplace(identifier, line);
    if (isNew) return;
    report.About(identifier)
        .Error(line, "the filename was used in line " + std::to_string(first->second) +
                         " already; both rows would show " + "the later package");
  });
}

void CheckLetterCase(const ManifestFile& manifest, const Reporter& report) {
  std::map<std::string, std::string> spellings;
  ForEachIdentifier(manifest, [&](const std::string& identifier, int line) {
    const auto [first, isNew] = spellings.try_emplace(LowerAscii(identifier), identifier);
    if (isNew || first->second == identifier) return;
    report.About(identifier)
        .Error(line, "the filename differs from " + Quoted(first->second) +
                         " in letter case only; on a player's disk both are one file");
  });
}

void CheckCommandLineWords(const ManifestFile& manifest, const Reporter& report) {
  ForEachIdentifier(manifest, [&](const std::string& identifier, int line) {
    if (identifier.find_first_of(" ,") == std::string::npos) return;
    report.About(identifier)
        .Error(line, "a blank or comma in the filename breaks \"install:\", with which the installer starts itself " +
                         std::string("again as administrator"));
  });
}

void CheckAscii(const ManifestFile& manifest, const Reporter& report) {
  ForEachIdentifier(manifest, [&](const std::string& identifier, int line) {
    if (IsAscii(identifier)) return;
    report.About(identifier).Error(line, "the filename holds letters beyond ASCII, which become other letters on disk");
  });
}

void CheckSafeNames(const ManifestFile& manifest, const Reporter& report) {
  ForEachIdentifier(manifest, [&](const std::string& identifier, int line) {
    if (IsSafeFileName(WidenBytes(identifier))) return;
    report.About(identifier).Error(line, "the filename is none that Windows can keep; the installer refuses it");
  });
}

void CheckReportText(const ManifestFile& manifest, const Reporter& report) {
  ForEachIdentifier(manifest, [&](const std::string& identifier, int line) {
    if (identifier.find_first_of("&=%+") == std::string::npos) return;
    report.About(identifier).Warning(line, "one of &=%+ in the filename garbles the reports, which carry it as it is");
  });
}

void CheckCollisions(const ManifestFile& manifest, const Reporter& report) {
  std::map<std::string, std::string> identifiers;
  ForEachIdentifier(manifest, [&](const std::string& identifier, int) {
    identifiers.try_emplace(LowerAscii(identifier), identifier);
  });
  ForEachIdentifier(manifest, [&](const std::string& identifier, int line) {
    const std::string name = LowerAscii(identifier);
    for (const char* own : {"manifest.xml", "manifest.xml.new", "launcher.update"}) {
      if (name == own || name == own + std::string(kRecordExtension)) {
        report.About(identifier).Error(line, "the installer keeps a file of its own under this name");
      }
    }
    if (!name.ends_with(kRecordExtension)) return;
    const auto other = identifiers.find(name.substr(0, name.size() - kRecordExtension.size()));
    if (other == identifiers.end()) return;
    report.About(identifier)
        .Error(line, "the installer keeps its record about " + Quoted(other->second) + " under this name");
  });
}

constexpr DocumentCheck kChecks[] = {
    {"filename", CheckPresence},          {"unique", CheckUniqueness},
    {"letter-case", CheckLetterCase},     {"command-line", CheckCommandLineWords},
    {"filename-ascii", CheckAscii},       {"filename-windows", CheckSafeNames},
    {"filename-report", CheckReportText}, {"filename-collision", CheckCollisions},
};

}  // namespace

std::span<const DocumentCheck> IdentifierChecks() { return kChecks; }
