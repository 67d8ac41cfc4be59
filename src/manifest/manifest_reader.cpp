#include "manifest/manifest_reader.h"

#include <tinyxml2.h>

#include <algorithm>
#include <string_view>

#include "system/text.h"

namespace {

using tinyxml2::XMLElement;

constexpr size_t kMd5Length = 32;

// The elements that match `name` one after the other, or all elements where it is null.
template <typename Element, typename Visitor>
void ForEachChild(Element& parent, const char* name, Visitor visit) {
  for (auto* child = parent.FirstChildElement(name); child; child = child->NextSiblingElement(name)) visit(*child);
}

std::string AttributeOrEmpty(const XMLElement& element, const char* name) {
  const char* value = element.Attribute(name);
  return value ? value : "";
}

std::string ValueOf(const XMLElement& element) { return AttributeOrEmpty(element, "value"); }

// What can't be read counts as 0, and so does a size below it.
int64_t SizeOf(const XMLElement& element) { return std::max<int64_t>(element.Int64Attribute("value"), 0); }

std::wstring DisplayText(const XMLElement& element) {
  const char* text = element.GetText();
  return Utf8ToWide(text ? text : ValueOf(element));
}

// A path and what goes with it, as the installation splits them again.
std::string TaskText(const XMLElement& task, const char* secondAttribute) {
  return AttributeOrEmpty(task, "path") + "|" + AttributeOrEmpty(task, secondAttribute);
}

RegistryItem ReadRegistryItem(const XMLElement& task) {
  RegistryItem item;
  item.keyPath = AttributeOrEmpty(task, "name");
  item.phase = AttributeOrEmpty(task, "order") == "before" ? RegistryPhase::Pre : RegistryPhase::Post;
  ForEachChild(task, "key", [&](const XMLElement& key) {
    item.values[AttributeOrEmpty(key, "name")] = AttributeOrEmpty(key, "value");
  });
  return item;
}

void ReadTask(const XMLElement& task, Package& package) {
  const std::string_view kind = task.Name();
  if (kind == "reg") {
    package.registryItems.push_back(ReadRegistryItem(task));
  } else if (kind == "link") {
    package.link = TaskText(task, "title");
  } else if (kind == "install") {
    package.install = TaskText(task, "args");
  } else if (kind == "execute") {
    package.execute = TaskText(task, "args");
  } else if (kind == "addon") {
    package.addons.push_back(AttributeOrEmpty(task, "name"));
  }
}

// How each child of a `package` goes into its field.
struct PackageElement {
  std::string_view name;
  void (*read)(const XMLElement& element, Package& package);
};

constexpr PackageElement kPackageElements[] = {
    {"title", [](const XMLElement& e, Package& p) { p.title = DisplayText(e); }},
    {"group", [](const XMLElement& e, Package& p) { p.group = DisplayText(e); }},
    {"tooltip", [](const XMLElement& e, Package& p) { p.tooltip = DisplayText(e); }},
    {"name", [](const XMLElement& e, Package& p) { p.name = WidenBytes(ValueOf(e)); }},
    {"filename", [](const XMLElement& e, Package& p) { p.filename = ValueOf(e); }},
    {"filetype", [](const XMLElement& e, Package& p) { p.filetype = ValueOf(e); }},
    {"password", [](const XMLElement& e, Package& p) { p.password = ValueOf(e); }},
    {"folder", [](const XMLElement& e, Package& p) { p.folder = ValueOf(e); }},
    {"md5", [](const XMLElement& e, Package& p) { p.md5 = ValueOf(e); }},
    {"verify", [](const XMLElement& e, Package& p) { p.verify = ValueOf(e); }},
    {"size", [](const XMLElement& e, Package& p) { p.size = SizeOf(e); }},
    {"upsize", [](const XMLElement& e, Package& p) { p.upsize = SizeOf(e); }},
    {"default", [](const XMLElement& e, Package& p) { p.isDefault = ValueOf(e) == "true"; }},
    {"sources",
     [](const XMLElement& e, Package& p) {
       ForEachChild(e, "source", [&](const XMLElement& source) {
         p.sources[AttributeOrEmpty(source, "key")] = AttributeOrEmpty(source, "url");
       });
     }},
    {"tasks", [](const XMLElement& e,
                 Package& p) { ForEachChild(e, nullptr, [&](const XMLElement& task) { ReadTask(task, p); }); }},
};

Package ReadPackage(const XMLElement& element) {
  Package package;
  ForEachChild(element, nullptr, [&](const XMLElement& child) {
    for (const auto& [name, read] : kPackageElements) {
      if (name == child.Name()) read(child, package);
    }
  });
  return package;
}

}  // namespace

XMLElement* FindManifestRoot(tinyxml2::XMLDocument& document) { return document.FirstChildElement("downloader"); }

bool TakeUpdater(XMLElement& root, UpdaterInfo& updater) {
  XMLElement* element = root.FirstChildElement("updater");
  if (!element) return false;
  if (element->Attribute("md5")) {
    updater.md5 = AttributeOrEmpty(*element, "md5").substr(0, kMd5Length);
    if (const char* helpURL = element->Attribute("helpURL")) updater.helpURL = helpURL;
    updater.filesize = element->UnsignedAttribute("filesize");
    updater.urls.clear();
    ForEachChild(*element, "source",
                 [&](const XMLElement& source) { updater.urls.push_back(AttributeOrEmpty(source, "url")); });
  }
  // Only the first one counts, but none may stay in the document.
  for (; element; element = root.FirstChildElement("updater")) root.DeleteChild(element);
  return true;
}

std::optional<std::string> ReadSources(const XMLElement& root, const std::string& selected, Manifest& manifest) {
  const XMLElement* catalogue = root.FirstChildElement("sources");
  if (!catalogue) return std::nullopt;
  manifest.sources.clear();
  ForEachChild(*catalogue, "source", [&](const XMLElement& source) {
    const std::string key = AttributeOrEmpty(source, "key");
    manifest.sources[key] = {key, AttributeOrEmpty(source, "title")};
  });
  if (!selected.empty() && manifest.sources.contains(selected)) return std::nullopt;
  if (const char* preferred = catalogue->Attribute("default")) return preferred;
  return manifest.sources.empty() ? "" : manifest.sources.begin()->first;
}

void ReadPackages(const XMLElement& root, Manifest& manifest) {
  const XMLElement* packages = root.FirstChildElement("packages");
  if (!packages) return;
  manifest.packageOrder.clear();
  ForEachChild(*packages, "package", [&](const XMLElement& element) {
    Package package = ReadPackage(element);
    manifest.packageOrder.push_back(package.filename);
    manifest.packages[package.filename] = std::move(package);
  });
}
