// The text of the game client's configuration file. No Windows header: also built natively.
#pragma once

#include <string>

struct ClientConfigValues {
  std::string nick;  // empty values are not filled in
  std::string displayResolution;
  std::string screenshotPath;
  std::string locale;
};

// Fills the first empty element of each kind with its value; what holds something stays. Returns how many were filled.
int FillClientConfig(std::string& text, const ClientConfigValues& values);
