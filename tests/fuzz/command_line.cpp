// The program's command line, as anybody may write it, and as one instance writes it for another.
#include "app/command_line.h"

#include "fuzz/fuzzing.h"
#include "system/text.h"

void FuzzOne(const std::string& input) {
  const CommandLineRequest request = ReadCommandLine(input);
  Require(request.updated == (input.rfind("updated", 0) == 0), "only the first word tells of an update");
  // What no manifest names can't be chosen: a list without packages, and letters beyond ASCII.
  if (!request.installList || request.installList->empty()) return;
  const std::string source = request.source.value_or("");
  const std::string line = InstallCommandLine(*request.installList, source);
  const CommandLineRequest again = ReadCommandLine(line);
  Require(again.installList == request.installList && again.source == source && !again.updated,
          "another instance reads what was meant");
}
