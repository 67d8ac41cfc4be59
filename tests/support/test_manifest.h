// A manifest for tests of what stands on one.
#pragma once

#include <gtest/gtest.h>

#include "core/context.h"
#include "manifest/manifest_store.h"
#include "support/exchanged.h"
#include "support/temp_folder.h"

// Replaces the program's manifest by this document, as if it had just been fetched; its cache goes to a folder that
// is removed. Fails the test when it has no packages.
inline void LoadTestManifest(const std::string& document) {
  const TempFolder folder;
  const Exchanged manifestPath(app.manifestPath, folder / L"manifest.xml");
  manifestBuffer = document;
  EXPECT_GT(LoadManifest(), 0);
}
