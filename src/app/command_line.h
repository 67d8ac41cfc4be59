// The words of the program's command line. No Windows header: also built natively.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct CommandLineRequest {
  bool updated = false;                                 // the line begins with "updated"
  std::optional<std::vector<std::string>> installList;  // of the last "install:" token
  std::optional<std::string> source;                    // of the last "source:" token
};

// Takes a command line (UTF-8, without the program name) apart at every blank; unknown tokens are ignored.
CommandLineRequest ReadCommandLine(std::string_view commandLine);

// The command line that makes another instance install these packages from this source, by itself. Bytes as in the
// manifest.
std::string InstallCommandLine(const std::vector<std::string>& packages, std::string_view source);
