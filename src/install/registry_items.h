// Registry values that a package asks for. Worker.
#pragma once

#include <cstddef>
#include <string>

#include "manifest/manifest_model.h"

struct RegistryCounts {
  size_t attempted = 0, succeeded = 0;  // values
};

// Writes the package's values of one phase. `targetFolder` is UTF-8.
RegistryCounts ApplyRegistryItems(const Package& package, RegistryPhase phase, const std::string& targetFolder);
