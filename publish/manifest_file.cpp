#include "manifest_file.h"

#include "disk.h"
#include "manifest/manifest_reader.h"

namespace {

using tinyxml2::XMLDocument;
using tinyxml2::XMLElement;

// A document of its own that holds a copy of `element` below the root: the program's reader takes whole documents, and
// of two packages with the same identifier it keeps the last.
XMLElement* CopyBelowRoot(const XMLElement& element, const char* section, XMLDocument& document) {
  XMLElement* root = document.NewElement("downloader");
  document.InsertEndChild(root);
  XMLElement* parent = section ? root->InsertNewChildElement(section) : root;
  parent->InsertEndChild(element.DeepClone(&document));
  return root;
}

Package ReadAsTheProgramDoes(const XMLElement& element) {
  XMLDocument document;
  Manifest manifest;
  ReadPackages(*CopyBelowRoot(element, "packages", document), manifest);
  return manifest.packages.begin()->second;
}

void ReadModel(ManifestFile& manifest) {
  ReadSources(*manifest.root, "", manifest.model);
  if (const XMLElement* updater = manifest.Section("updater")) {
    XMLDocument document;
    TakeUpdater(*CopyBelowRoot(*updater, nullptr, document), manifest.model.updater);
  }
  const XMLElement* packages = manifest.Section("packages");
  if (!packages) return;
  for (auto* element = packages->FirstChildElement("package"); element;
       element = element->NextSiblingElement("package")) {
    manifest.packages.push_back({element, ReadAsTheProgramDoes(*element)});
  }
}

}  // namespace

const XMLElement* PackageEntry::Child(const char* name) const { return element->LastChildElement(name); }

std::vector<const XMLElement*> PackageEntry::Grandchildren(const char* parent, const char* name) const {
  std::vector<const XMLElement*> found;
  for (auto* child = element->FirstChildElement(parent); child; child = child->NextSiblingElement(parent)) {
    for (auto* inner = child->FirstChildElement(name); inner; inner = inner->NextSiblingElement(name)) {
      found.push_back(inner);
    }
  }
  return found;
}

int PackageEntry::LineOf(const char* name) const {
  const XMLElement* child = Child(name);
  return child ? child->GetLineNum() : element->GetLineNum();
}

bool PackageEntry::LacksValue(const char* name) const {
  const XMLElement* child = Child(name);
  return child && !child->Attribute("value");
}

std::optional<std::string> ManifestFile::DefaultSource() const {
  const XMLElement* catalogue = Section("sources");
  const char* key = catalogue ? catalogue->Attribute("default") : nullptr;
  return key ? std::optional<std::string>(key) : std::nullopt;
}

std::unique_ptr<ManifestFile> LoadManifestFile(const std::string& path) {
  auto text = ReadFile(path);
  return text ? ParseManifestText(path, std::move(*text)) : nullptr;
}

std::unique_ptr<ManifestFile> ParseManifestText(const std::string& path, std::string text) {
  auto manifest = std::make_unique<ManifestFile>();
  manifest->path = path;
  manifest->text = std::move(text);
  if (manifest->document.Parse(manifest->text.data(), manifest->text.size()) != tinyxml2::XML_SUCCESS) return manifest;
  manifest->root = FindManifestRoot(manifest->document);
  if (manifest->root) ReadModel(*manifest);
  return manifest;
}

std::string AttributeOf(const XMLElement& element, const char* name) {
  const char* value = element.Attribute(name);
  return value ? value : "";
}
