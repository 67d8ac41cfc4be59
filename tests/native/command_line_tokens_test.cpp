#include "app/command_line_tokens.h"

#include <gtest/gtest.h>

TEST(CommandLineTokens, AreTakenApartAtEveryBlank) {
  using Ids = std::vector<std::string>;
  const struct {
    std::string commandLine;
    bool updated;
    std::optional<Ids> installList;
    std::optional<std::string> source;
  } cases[] = {
      {"  source:main   install:gta,,b x", false, Ids{"gta", "", "b"}, "main"},
      {"install:a source:x install: source:y", false, Ids{}, "y"},  // the last one counts, as a whole
      {"INSTALL:a xsource:a install:source:x updated", false, Ids{"source:x"}, {}},
      {"updatedinstall:a source:", true, {}, ""},
  };
  for (const auto& [commandLine, updated, installList, source] : cases) {
    const CommandLineRequest request = ParseCommandLineTokens(commandLine);
    EXPECT_EQ(request.updated, updated) << commandLine;
    EXPECT_EQ(request.installList, installList) << commandLine;
    EXPECT_EQ(request.source, source) << commandLine;
  }
}
