// What follows when a package, whose paths have been looked at, has been placed: addons, the desktop shortcut, a
// program to start. Failures are silent but for a shortcut's name that leaves the desktop, which the log tells. Worker.
#pragma once

#include <string>

#include "manifest/manifest_model.h"

// `targetFolder` is UTF-8.
void RunAddons(const Package& package, const std::string& targetFolder);

void CreateDesktopLink(const Package& package, const std::wstring& targetFolder);

// Starts the program without waiting for it.
void RunExecuteTask(const Package& package, const std::wstring& targetFolder);
