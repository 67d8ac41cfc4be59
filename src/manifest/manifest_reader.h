// The packages manifest as an XML document. No Windows header: also built natively.
#pragma once

#include <optional>
#include <string>

#include "manifest/manifest_model.h"

namespace tinyxml2 {
class XMLDocument;
class XMLElement;
}  // namespace tinyxml2

// The first top-level `downloader` element, or null.
tinyxml2::XMLElement* FindManifestRoot(tinyxml2::XMLDocument& document);

// Takes an `updater` element over into `updater` where it has an `md5`, and removes it from the document in any case.
// Returns whether there was one.
bool TakeUpdater(tinyxml2::XMLElement& root, UpdaterInfo& updater);

// Replaces the source catalogue where the document has one. Returns the source to select instead of `selected`, or
// nothing when the selection stays.
std::optional<std::string> ReadSources(const tinyxml2::XMLElement& root, const std::string& selected,
                                       Manifest& manifest);

// Rebuilds the package order and inserts or replaces packages where the document has any. A missing attribute reads as
// the empty text, and a negative size as 0; nothing else is validated.
void ReadPackages(const tinyxml2::XMLElement& root, Manifest& manifest);
