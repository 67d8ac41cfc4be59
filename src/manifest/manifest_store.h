// The one manifest of the program, and its cache file.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "manifest/manifest_model.h"

namespace tinyxml2 {
class XMLDocument;
}

// The manifest as last loaded, empty at first. What was returned stays as it is when another one is loaded. Any thread.
std::shared_ptr<const Manifest> CurrentManifest();

// A document just fetched; while it is empty the cache file is read. Belongs to the thread that fetches and loads: the
// manifest thread, later the worker.
extern std::string& manifestBuffer;

// What a document turned out to be.
enum class ManifestKind : int {
  Unreadable = -1,  // an unreadable cache file is deleted
  Foreign = 0,      // it has no `downloader`
  Manifest = 1,
};

// A manifest document on its way into the program. Manifest thread or worker.
class ManifestDocument {
 public:
  ManifestDocument();
  ~ManifestDocument();
  ManifestDocument(const ManifestDocument&) = delete;
  ManifestDocument& operator=(const ManifestDocument&) = delete;

  // Takes manifestBuffer, or the cache file while that is empty. Once. A cache that announces a new program is deleted:
  // only a document from the network may.
  ManifestKind Read();

  // The new program that a document from the network announces; null when there is none.
  const UpdaterInfo* AnnouncedUpdate() const;

  // Makes what was read the manifest of the program, settles app.selectedSource, and caches a document from the
  // network. Returns the number of entries in packageOrder.
  int Load();

 private:
  std::unique_ptr<tinyxml2::XMLDocument> document_;
  Manifest manifest_;
  bool fromNetwork_ = false;
  bool announcesUpdate_ = false;
};

// Reads and loads the next document without a look at a new program. Returns what Load does, or the ManifestKind of a
// document that can't be loaded.
int LoadManifest();

// What became of the cache file.
enum class CacheSave {
  Saved,
  DiskFull,
  NotWritable,  // it can't be opened for writing or replaced
};

// Writes the document last loaded from the network to the cache file. Where that fails, what was there stays whole.
CacheSave SaveManifestCache();

// The outcome of the save in the last Load of a document from the network; Saved before there was one.
CacheSave LastCacheSave();
