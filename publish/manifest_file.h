// A manifest on disk: the document as it is written, and what the program makes of it.
#pragma once

#include <tinyxml2.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "manifest/manifest_model.h"

// One `package` element. Lives as long as its ManifestFile.
struct PackageEntry {
  const tinyxml2::XMLElement* element = nullptr;
  Package package;  // as the program reads this element

  // The child that counts: the last one of that name. Null when there is none.
  const tinyxml2::XMLElement* Child(const char* name) const;
  // The elements called `name` in all children called `parent`: the program reads several as if they were one.
  std::vector<const tinyxml2::XMLElement*> Grandchildren(const char* parent, const char* name) const;
  // The line of that child, or of the package.
  int LineOf(const char* name) const;
  // Whether that child is there without the attribute that its value is read from. Its own check tells of that.
  bool LacksValue(const char* name) const;
};

struct ManifestFile {
  std::string path;                            // as the user named it
  std::string text;                            // the file's bytes
  tinyxml2::XMLDocument document;              // has an error when the text can't be read as XML
  const tinyxml2::XMLElement* root = nullptr;  // `downloader`, or null
  Manifest model;                              // sources and updater; packages stand below
  std::vector<PackageEntry> packages;          // in document order

  // A child of the root, the first one as the program takes it; or null.
  const tinyxml2::XMLElement* Section(const char* name) const { return root ? root->FirstChildElement(name) : nullptr; }
  // The attribute `default` of the source catalogue.
  std::optional<std::string> DefaultSource() const;
};

// Reads the file (its name in UTF-8); null when that can't be done. What it holds may be anything.
std::unique_ptr<ManifestFile> LoadManifestFile(const std::string& path);

// The same for a text that is at hand.
std::unique_ptr<ManifestFile> ParseManifestText(const std::string& path, std::string text);

std::string AttributeOf(const tinyxml2::XMLElement& element, const char* name);
