// A manifest for tests of what stands on one.
#pragma once

#include <string>

// Replaces the program's manifest by this document, as if it had just been fetched; its cache goes to a folder that
// is removed. Fails the test when it has no packages.
void LoadTestManifest(const std::string& document);
