#include "support/test_manifest.h"

#include <gtest/gtest.h>

#include "app/context.h"
#include "manifest/manifest_store.h"
#include "support/exchanged.h"
#include "support/temp_folder.h"

void LoadTestManifest(const std::string& document) {
  const TempFolder folder;
  const Exchanged manifestPath(app.manifestPath, folder / L"manifest.xml");
  manifestBuffer = document;
  EXPECT_GT(LoadManifest(true), 0);
}
