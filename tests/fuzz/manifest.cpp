// A manifest as it comes from the line, and once more as it comes back from the cache.
#include <tinyxml2.h>

#include "fuzz/fuzzing.h"
#include "manifest/manifest_reader.h"
#include "system/text.h"

namespace {

std::string Printed(const tinyxml2::XMLElement& root) {
  tinyxml2::XMLPrinter printer;
  root.Accept(&printer);
  return printer.CStr();
}

void RequireSound(const Manifest& manifest) {
  for (const std::string& filename : manifest.packageOrder) {
    const auto package = manifest.packages.find(filename);
    Require(package != manifest.packages.end() && package->second.filename == filename, "every row has its package");
    Require(package->second.size >= 0 && package->second.upsize >= 0, "no size is negative");
  }
  Require(manifest.updater.md5.size() <= 32, "a hash has its length at most");
}

void RequireSame(const Manifest& fetched, const Manifest& cached) {
  Require(fetched.packageOrder == cached.packageOrder, "the cache has the same packages");
  for (const auto& [filename, package] : fetched.packages) {
    const Package& other = cached.packages.at(filename);
    Require(package.md5 == other.md5 && package.size == other.size && package.upsize == other.upsize &&
                package.filetype == other.filetype && package.verify == other.verify &&
                package.install == other.install && package.sources == other.sources,
            "the cache says the same of a package");
  }
}

// False for what is no manifest.
bool Read(const std::string& text, Manifest& manifest, std::string& withoutUpdater) {
  tinyxml2::XMLDocument document;
  if (document.Parse(text.data(), text.size()) != tinyxml2::XML_SUCCESS) return false;
  tinyxml2::XMLElement* const root = FindManifestRoot(document);
  if (!root) return false;
  TakeUpdater(*root, manifest.updater);
  Require(!root->FirstChildElement("updater"), "the cache never announces an update");
  const auto selected = ReadSources(*root, "main", manifest);
  if (!selected && root->FirstChildElement("sources"))
    Require(manifest.sources.contains("main"), "the source is known");
  ReadPackages(*root, manifest);
  RequireSound(manifest);
  withoutUpdater = Printed(*root);
  return true;
}

}  // namespace

void FuzzOne(const std::string& input) {
  Manifest fetched, cached;
  std::string text, again;
  if (!Read(input, fetched, text)) return;
  Require(Read(ToTextFile(text), cached, again), "what was fetched can be read from the cache");
  RequireSame(fetched, cached);
}
