// The values that have a fixed meaning in a manifest.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "manifest/manifest_model.h"  // kZipType and kInstallerType

// Whether the text is a placeholder for a folder that a player's computer can have.
bool IsKnownFolder(std::string_view folder);

// A number of bytes as the program reads it, when that is all there is: it would take "12 MB" for 12.
std::optional<int64_t> WholeNumber(std::string_view text);

// What is wrong with a digest, as a sentence; empty for a right one, and for none.
std::string Md5Fault(std::string_view md5);
