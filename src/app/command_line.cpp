#include "app/command_line.h"

#include "system/text.h"

namespace {

constexpr std::string_view kUpdated = "updated";
constexpr std::string_view kInstall = "install:";
constexpr std::string_view kSource = "source:";

}  // namespace

CommandLineRequest ReadCommandLine(std::string_view commandLine) {
  CommandLineRequest request;
  request.updated = commandLine.starts_with(kUpdated);
  for (const std::string& token : SplitKeepingEmpty(commandLine, ' ')) {
    if (token.starts_with(kInstall)) {
      request.installList = SplitKeepingEmpty(std::string_view(token).substr(kInstall.size()), ',');
    } else if (token.starts_with(kSource)) {
      request.source = token.substr(kSource.size());
    }
  }
  return request;
}

std::string InstallCommandLine(const std::vector<std::string>& packages, std::string_view source) {
  std::string line;
  for (const std::string& package : packages) {
    line += line.empty() ? kInstall : ",";
    line += package;
  }
  return line.append(" ").append(kSource).append(source);
}
