#include "install/registry_items.h"

RegistryCounts ApplyRegistryItems(const Package&, RegistryPhase, const std::string&) { return {}; }
