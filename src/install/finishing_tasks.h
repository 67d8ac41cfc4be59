// What follows when a package has been placed, which has checked its paths: addons, the desktop shortcut, a program to
// start. All failures are silent. Worker.
#pragma once

#include <string>

#include "manifest/manifest_model.h"

// `targetFolder` is UTF-8.
void RunAddons(const Package& package, const std::string& targetFolder);

void CreateDesktopLink(const Package& package, const std::wstring& targetFolder);

// Starts the program without waiting for it.
void RunExecuteTask(const Package& package, const std::wstring& targetFolder);
