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
      {"INSTALL:a Source:x install:source:x xsource:a", false, Ids{"source:x"}, {}},
      {"updatedinstall:a source:", true, {}, ""},
      {"source:a updated", false, {}, "a"},
  };
  for (const auto& test : cases) {
    const CommandLineRequest request = ParseCommandLineTokens(test.commandLine);
    EXPECT_EQ(request.updated, test.updated) << test.commandLine;
    EXPECT_EQ(request.installList, test.installList) << test.commandLine;
    EXPECT_EQ(request.source, test.source) << test.commandLine;
  }
}
