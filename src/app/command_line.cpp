#include "app/command_line.h"

#include <windows.h>

#include "app/command_line_tokens.h"
#include "app/context.h"
#include "app/replaced_program.h"
#include "system/path_names.h"
#include "system/text.h"

namespace {

// What fits a command line that is kept, never half of a surrogate pair.
std::wstring_view FittingStart(std::wstring_view commandLine) {
  if (commandLine.size() <= kMaxPathLength) return commandLine;
  const wchar_t last = commandLine[kMaxPathLength - 1];
  return commandLine.substr(0, IS_HIGH_SURROGATE(last) ? kMaxPathLength - 1 : kMaxPathLength);
}

}  // namespace

void ParseCommandLine(std::wstring_view commandLine) {
  app.commandLine = FittingStart(commandLine);
  CommandLineRequest request = ParseCommandLineTokens(WideToUtf8(commandLine));
  if (request.updated) RemoveReplacedProgram();
  if (request.installList) app.installList.Set(std::move(*request.installList));
  if (request.source) app.selectedSource.Set(std::move(*request.source));
}
