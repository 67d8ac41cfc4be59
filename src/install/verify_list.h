// What must be there when a package has been placed. Worker.
#pragma once

#include <string>

#include "install/installation.h"
#include "install/placement_result.h"
#include "manifest/manifest_model.h"

// Whether everything that the package's `verify` names exists below `target`. At the first thing missing it tells the
// user and the run's error records.
PlacementResult CheckVerifyList(Installation& run, const Package& package, const std::wstring& target);
