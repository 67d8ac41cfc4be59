#include "manifest/manifest_store.h"

#include <share.h>
#include <tinyxml2.h>
#include <windows.h>

#include <cstdio>

#include "app/context.h"
#include "manifest/manifest_reader.h"
#include "system/files.h"
#include "system/path_names.h"
#include "system/shared_state.h"

std::string& manifestBuffer = *new std::string;

namespace {

using tinyxml2::XMLDocument;

SharedValue<Manifest>& currentManifest = *new SharedValue<Manifest>;

// The document last loaded from the network, without its updater. Kept apart from the XML document, because the user
// may still be asked about a failed save while the worker loads the manifest again.
SharedValue<std::string>& cacheText = *new SharedValue<std::string>;

SharedWord<bool> cacheSaveFailed;

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

void ActOnUpdate(const UpdaterInfo& updater, bool fromNetwork, bool suppressSelfUpdate) {
  if (!fromNetwork) {
    DeleteFileW(app.manifestPath.c_str());
  } else if (!suppressSelfUpdate) {
    app.updateInProgress = true;
    app.upward.runSelfUpdate(updater);
  }
}

std::string Print(const XMLDocument& document) {
  tinyxml2::XMLPrinter printer;
  document.Print(&printer);
  return printer.CStr();
}

// Writes all of the text and closes the file; false when the disk did not take it.
bool WriteAndClose(FILE* file, const std::string& text) {
  const bool written = fwrite(text.data(), 1, text.size(), file) == text.size();
  return fclose(file) == 0 && written;
}

}  // namespace

std::shared_ptr<const Manifest> CurrentManifest() { return currentManifest.Get(); }

int LoadManifest(bool suppressSelfUpdate) {
  const bool fromNetwork = !manifestBuffer.empty();
  XMLDocument document;
  if (!(fromNetwork ? ParseFetched(document) : ParseCache(document))) return -1;
  tinyxml2::XMLElement* root = FindManifestRoot(document);
  if (!root) return 0;

  Manifest manifest = *CurrentManifest();
  if (TakeUpdater(*root, manifest.updater) && !manifest.updater.md5.empty()) {
    ActOnUpdate(manifest.updater, fromNetwork, suppressSelfUpdate);
  }
  const auto newSelection = ReadSources(*root, *app.selectedSource.Get(), manifest);
  if (newSelection) app.selectedSource.Set(*newSelection);
  ReadPackages(*root, manifest);
  const int count = static_cast<int>(manifest.packageOrder.size());
  currentManifest.Set(std::move(manifest));

  if (fromNetwork) {
    cacheText.Set(Print(document));
    cacheSaveFailed = !SaveManifestCache();
  }
  return count;
}

bool SaveManifestCache() {
  // A cache that was cut short would leave the next start without a list, so a complete file takes the old one's place.
  const std::wstring newPath = JoinPath(ParentFolder(app.manifestPath), L"manifest.new");
  FILE* file = _wfsopen(newPath.c_str(), L"w", _SH_DENYRW);
  if (!file) return false;
  const bool written = WriteAndClose(file, *cacheText.Get());
  // Who looks at the old file meanwhile, a scanner for instance, may forbid to replace it but not to write to it.
  const bool saved = written && (MoveFileExW(newPath.c_str(), app.manifestPath.c_str(), MOVEFILE_REPLACE_EXISTING) ||
                                 CopyFileW(newPath.c_str(), app.manifestPath.c_str(), FALSE));
  // On a full disk there is nothing to repair.
  const bool diskIsFull = !written || (!saved && GetLastError() == ERROR_DISK_FULL);
  DeleteFileW(newPath.c_str());
  // What was there is outdated and must not be taken for this one, nor must half of this one.
  if (!saved) DeleteFileW(app.manifestPath.c_str());
  return saved || diskIsFull;
}

bool ManifestCacheSaveFailed() { return cacheSaveFailed; }
