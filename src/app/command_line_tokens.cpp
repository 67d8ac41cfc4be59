#include "app/command_line_tokens.h"

#include "system/text.h"

namespace {

constexpr std::string_view kUpdated = "updated";
constexpr std::string_view kInstall = "install:";
constexpr std::string_view kSource = "source:";

}  // namespace

CommandLineRequest ParseCommandLineTokens(std::string_view commandLine) {
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
