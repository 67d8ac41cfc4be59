// Placeholders in the manifest's folders and registry data.
#pragma once

#include <string>

// The folder that a package's `folder` stands for: a known game's folder, which the user may be asked for, or a special
// folder of Windows; empty when it can't be resolved. Worker.
std::wstring ResolveFolderPlaceholder(const std::string& folder);

// `text` with its first "{install_path}" replaced by the target folder (UTF-8).
std::string ExpandInstallPath(std::string text, const std::string& targetFolder);
