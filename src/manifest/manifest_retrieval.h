// Getting the packages manifest from the product's web service. Blocks the calling thread.
#pragma once

#include <string>

#include "net/http_result.h"

// The address of the manifest for this installation.
std::wstring BuildManifestUrl();

struct ManifestFetch {
  bool ok = false;         // something was received
  HttpResult result = {};  // of the client
};

// Fetches the manifest into manifestBuffer, which is emptied first. Manifest thread or worker.
ManifestFetch FetchManifest();

// Whether the cache file is young enough to be used instead.
bool IsManifestCacheFresh();
