// The game client's configuration file.
#pragma once

#include <string>

// For the addon "mtasa_config": fills the empty nickname, display resolution, screenshot folder and locale of the
// client below `targetFolder` (UTF-8). True when the file was there and not empty, whether or not something was
// filled in; false also for every other addon. Failures leave the file as it was. Worker.
bool ApplyGameClientConfig(const std::string& targetFolder, const std::string& addon);
