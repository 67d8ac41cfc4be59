#include "manifest/manifest_store.h"

#include <tinyxml2.h>
#include <windows.h>

#include "core/context.h"
#include "manifest/manifest_reader.h"
#include "system/files.h"
#include "system/shared_state.h"
#include "system/text.h"

std::string& manifestBuffer = *new std::string;

namespace {

using tinyxml2::XMLDocument;

SharedValue<Manifest>& currentManifest = *new SharedValue<Manifest>;

// The document last loaded from the network, without its updater. Kept apart from the XML document, because the user
// may still be asked about a failed save while the worker loads the manifest again.
SharedValue<std::string>& cacheText = *new SharedValue<std::string>;

SharedWord<CacheSave> lastCacheSave{CacheSave::Saved};

bool Parse(XMLDocument& document, const std::string& text) {
  return document.Parse(text.data(), text.size()) == tinyxml2::XML_SUCCESS;
}

bool ParseFetched(XMLDocument& document) {
  if (!Parse(document, manifestBuffer)) return false;
  manifestBuffer.clear();
  return true;
}

bool ParseCache(XMLDocument& document) {
  const auto text = ReadWholeFile(app.manifestPath);
  if (text && Parse(document, *text)) return true;
  DeleteFileW(app.manifestPath.c_str());
  return false;
}

// Without what stands around it: the library reads past text behind the root, but can't always read it again.
std::string Print(const tinyxml2::XMLElement& root) {
  tinyxml2::XMLPrinter printer;
  root.Accept(&printer);
  return printer.CStr();
}

}  // namespace

std::shared_ptr<const Manifest> CurrentManifest() { return currentManifest.Get(); }

ManifestDocument::ManifestDocument() : document_(std::make_unique<XMLDocument>()), manifest_(*CurrentManifest()) {}

ManifestDocument::~ManifestDocument() = default;

ManifestKind ManifestDocument::Read() {
  fromNetwork_ = !manifestBuffer.empty();
  if (!(fromNetwork_ ? ParseFetched(*document_) : ParseCache(*document_))) return ManifestKind::Unreadable;
  tinyxml2::XMLElement* root = FindManifestRoot(*document_);
  if (!root) return ManifestKind::Foreign;
  if (TakeUpdater(*root, manifest_.updater) && !manifest_.updater.md5.empty()) {
    announcesUpdate_ = fromNetwork_;
    if (!fromNetwork_) DeleteFileW(app.manifestPath.c_str());
  }
  return ManifestKind::Manifest;
}

const UpdaterInfo* ManifestDocument::AnnouncedUpdate() const { return announcesUpdate_ ? &manifest_.updater : nullptr; }

int ManifestDocument::Load() {
  const tinyxml2::XMLElement& root = *FindManifestRoot(*document_);
  const auto newSelection = ReadSources(root, *app.selectedSource.Get(), manifest_);
  if (newSelection) app.selectedSource.Set(*newSelection);
  ReadPackages(root, manifest_);
  const int count = static_cast<int>(manifest_.packageOrder.size());
  currentManifest.Set(std::move(manifest_));
  if (fromNetwork_) {
    cacheText.Set(Print(root));
    lastCacheSave = SaveManifestCache();
  }
  return count;
}

int LoadManifest() {
  ManifestDocument document;
  const ManifestKind kind = document.Read();
  return kind == ManifestKind::Manifest ? document.Load() : static_cast<int>(kind);
}

CacheSave SaveManifestCache() {
  const uint32_t error = ReplaceFileContent(app.manifestPath, ToTextFile(*cacheText.Get()));
  if (error == ERROR_SUCCESS) return CacheSave::Saved;
  return error == ERROR_DISK_FULL ? CacheSave::DiskFull : CacheSave::NotWritable;
}

CacheSave LastCacheSave() { return lastCacheSave; }
