// The one manifest of the program, and its cache file.
#pragma once

#include <memory>
#include <string>

#include "manifest/manifest_model.h"

// The manifest as last loaded, empty at first. What was returned stays as it is when another one is loaded. Any thread.
std::shared_ptr<const Manifest> CurrentManifest();

// A document just fetched, for LoadManifest; while it is empty LoadManifest reads the cache file. Belongs to the
// thread that fetches and loads: the manifest thread, later the worker.
extern std::string& manifestBuffer;

// Rebuilds the manifest from manifestBuffer, or from the cache file while that is empty. Returns the number of entries
// in its packageOrder, 0 for a document without `downloader`, -1 for one that can't be read (an unreadable cache file
// is deleted). A document from the network is cached. If it announces a new program, app.upward.runSelfUpdate runs
// first, unless `suppressSelfUpdate`. Manifest thread or worker.
int LoadManifest(bool suppressSelfUpdate);

// Writes the document last loaded from the network to the cache file; false when the file can't be opened for writing.
bool SaveManifestCache();

// Whether the last LoadManifest from the network could not open the cache file for writing.
bool ManifestCacheSaveFailed();
