// Where packages come from: the source catalogue, each package's addresses, and the updater's.
#include <set>
#include <string>

#include "address.h"
#include "ascii.h"
#include "checks.h"
#include "package_types.h"

namespace {

using tinyxml2::XMLElement;

template <typename Visitor>
void ForEachSource(const XMLElement* parent, Visitor visit) {
  if (!parent) return;
  for (auto* source = parent->FirstChildElement("source"); source; source = source->NextSiblingElement("source")) {
    visit(*source);
  }
}

template <typename Visitor>
void ForEachPackageSource(const PackageEntry& entry, Visitor visit) {
  for (const XMLElement* source : entry.Grandchildren("sources", "source")) visit(*source);
}

void CheckCataloguePresence(const ManifestFile& manifest, const Reporter& report) {
  const XMLElement* catalogue = manifest.Section("sources");
  if (!catalogue) {
    report.Error(manifest.root->GetLineNum(), "there is no <sources> with the names of the download sources");
  } else if (!catalogue->FirstChildElement("source")) {
    report.Error(catalogue->GetLineNum(), "the catalogue of sources is empty");
  }
}

void CheckDefaultSource(const ManifestFile& manifest, const Reporter& report) {
  const XMLElement* catalogue = manifest.Section("sources");
  if (!catalogue || manifest.model.sources.empty()) return;
  const auto key = manifest.DefaultSource();
  if (!key) {
    report.Warning(catalogue->GetLineNum(),
                   "there is no default source; the installer takes the first key in byte order, " +
                       Quoted(manifest.model.sources.begin()->first));
  } else if (!manifest.model.sources.contains(*key)) {
    report.Error(catalogue->GetLineNum(), "the default source " + Quoted(*key) + " is not in the catalogue");
  }
}

void CheckCatalogueKeys(const ManifestFile& manifest, const Reporter& report) {
  std::set<std::string> keys;
  ForEachSource(manifest.Section("sources"), [&](const XMLElement& source) {
    const std::string key = AttributeOf(source, "key");
    if (!source.Attribute("key")) return;
    const int line = source.GetLineNum();
    if (key.empty()) return report.Error(line, "a source has an empty key");
    if (!keys.insert(key).second)
      report.Error(line, "the source " + Quoted(key) + " stands in the catalogue once more");
    if (!IsAscii(key) || key.find_first_of(" &=%+\"\\") != std::string::npos) {
      report.Error(
          line,
          "the source key " + Quoted(key) +
              " may hold no blank, no letter beyond ASCII and none of &=%+\"\\: it is a word of the command line " +
              "and goes into reports as it is");
    }
  });
}

void CheckCatalogueTitles(const ManifestFile& manifest, const Reporter& report) {
  ForEachSource(manifest.Section("sources"), [&](const XMLElement& source) {
    const char* title = source.Attribute("title");
    if (!title) return;
    if (!*title) report.Error(source.GetLineNum(), "a source has an empty title, so its menu item would be empty");
    if (!IsAscii(title)) {
      report.Warning(source.GetLineNum(),
                     "letters beyond ASCII in the title " + Quoted(title) + " look wrong in the menu");
    }
  });
}

constexpr DocumentCheck kCatalogueChecks[] = {
    {"catalogue", CheckCataloguePresence},
    {"default-source", CheckDefaultSource},
    {"source-key", CheckCatalogueKeys},
    {"source-title", CheckCatalogueTitles},
};

void CheckPackageSources(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  if (entry.package.sources.empty())
    report.Error(entry.LineOf("sources"), "there is no source, so it can't be downloaded");
}

void CheckSourcesInCatalogue(const PackageEntry& entry, const ManifestFile& manifest, const Reporter& report) {
  if (manifest.model.sources.empty()) return;
  ForEachPackageSource(entry, [&](const XMLElement& source) {
    const std::string key = AttributeOf(source, "key");
    if (!source.Attribute("key") || manifest.model.sources.contains(key)) return;
    report.Error(source.GetLineNum(),
                 "the source " + Quoted(key) + " is not in the catalogue, so nobody can choose it");
  });
}

void CheckDefaultAmongSources(const PackageEntry& entry, const ManifestFile& manifest, const Reporter& report) {
  const auto& sources = entry.package.sources;
  const auto key = manifest.DefaultSource();
  if (sources.empty() || !key || !manifest.model.sources.contains(*key) || sources.contains(*key)) return;
  report.Warning(entry.LineOf("sources"), "the default source " + Quoted(*key) + " doesn't have it; " +
                                              Quoted(sources.begin()->first) + " is asked first");
}

void CheckRepeatedSources(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  std::set<std::string> keys;
  ForEachPackageSource(entry, [&](const XMLElement& source) {
    const std::string key = AttributeOf(source, "key");
    if (source.Attribute("key") && !keys.insert(key).second) {
      report.Error(source.GetLineNum(),
                   "the source " + Quoted(key) + " stands here once more; only the last address counts");
    }
  });
}

void CheckAddress(const XMLElement& source, const Reporter& report) {
  const char* url = source.Attribute("url");
  if (!url) return;
  if (const std::string fault = AddressFault(url); !fault.empty()) report.Error(source.GetLineNum(), fault);
}

void CheckWeakness(const XMLElement& source, const Reporter& report) {
  const std::string url = AttributeOf(source, "url");
  if (!AddressFault(url).empty()) return;
  if (const std::string weakness = AddressWeakness(url); !weakness.empty())
    report.Warning(source.GetLineNum(), weakness);
}

void CheckPackageAddresses(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  ForEachPackageSource(entry, [&](const XMLElement& source) { CheckAddress(source, report); });
}

void CheckPackageWeaknesses(const PackageEntry& entry, const ManifestFile&, const Reporter& report) {
  ForEachPackageSource(entry, [&](const XMLElement& source) { CheckWeakness(source, report); });
}

constexpr PackageCheck kSourceChecks[] = {
    {"source", CheckPackageSources},
    {"source-unknown", CheckSourcesInCatalogue},
    {"source-default", CheckDefaultAmongSources},
    {"source-repeated", CheckRepeatedSources},
    {"address", CheckPackageAddresses},
    {"http", CheckPackageWeaknesses},
};

// A faulty updater doesn't fail alone: every program that reads it asks its player to update by hand, and closes.
void CheckUpdaterMd5(const ManifestFile& manifest, const Reporter& report) {
  const XMLElement* updater = manifest.Section("updater");
  const char* md5 = updater ? updater->Attribute("md5") : nullptr;
  if (!md5) return;
  const std::string fault = *md5 ? Md5Fault(md5) : "md5 is empty";
  if (!fault.empty()) report.Error(updater->GetLineNum(), "updater: " + fault + "; every player would be locked out");
}

void CheckUpdaterSources(const ManifestFile& manifest, const Reporter& report) {
  const XMLElement* updater = manifest.Section("updater");
  if (!updater) return;
  if (!updater->FirstChildElement("source")) {
    report.Error(updater->GetLineNum(), "updater: there is no source; every player would be locked out");
  }
  ForEachSource(updater, [&](const XMLElement& source) {
    CheckAddress(source, report);
    CheckWeakness(source, report);
  });
}

void CheckUpdaterSize(const ManifestFile& manifest, const Reporter& report) {
  const XMLElement* updater = manifest.Section("updater");
  if (!updater) return;
  const std::string text = AttributeOf(*updater, "filesize");
  if (const auto size = WholeNumber(text); size && *size != 0 && *size == manifest.model.updater.filesize) return;
  report.Error(updater->GetLineNum(), "updater: filesize " + Quoted(text) + " is not the program's number of bytes");
}

void CheckUpdaterHelp(const ManifestFile& manifest, const Reporter& report) {
  const XMLElement* updater = manifest.Section("updater");
  if (!updater) return;
  const std::string page = AttributeOf(*updater, "helpURL");
  if (page.empty()) {
    report.Warning(updater->GetLineNum(), "updater: there is no helpURL, the page for players whose update fails");
  } else if (!AddressFault(page).empty()) {
    report.Error(updater->GetLineNum(), "updater: helpURL: " + AddressFault(page));
  }
}

constexpr DocumentCheck kUpdaterChecks[] = {
    {"updater-md5", CheckUpdaterMd5},
    {"updater-source", CheckUpdaterSources},
    {"updater-size", CheckUpdaterSize},
    {"updater-help", CheckUpdaterHelp},
};

}  // namespace

std::span<const DocumentCheck> CatalogueChecks() { return kCatalogueChecks; }
std::span<const PackageCheck> SourceChecks() { return kSourceChecks; }
std::span<const DocumentCheck> UpdaterChecks() { return kUpdaterChecks; }
