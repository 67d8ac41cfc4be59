// The values that have a fixed meaning in a manifest.
#pragma once

#include <string>
#include <string_view>

#include "manifest/manifest_model.h"  // kZipType and kInstallerType

// Whether the text is a placeholder for a folder that a player's computer can have.
bool IsKnownFolder(std::string_view folder);

// What is wrong with a digest, as a sentence; empty for a right one, and for none.
std::string Md5Fault(std::string_view md5);
