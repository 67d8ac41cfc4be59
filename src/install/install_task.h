// The installer program of a package. Worker.
#pragma once

#include <cstdint>
#include <string>

#include "install/run_state.h"
#include "manifest/manifest_model.h"

// Runs the program that the package's `install` names below `target`, if it has the bytes that the package brought, or
// else the downloaded file itself, and waits for its end; app.cancelRequested ends it. Returns 0 whatever the program's
// outcome, ERROR_CANCELLED before it was started, or the system error when it could not be started; the user and the
// run's error records have been told then.
uint32_t RunInstallTask(RunState& run, const Package& package, const std::wstring& target);
