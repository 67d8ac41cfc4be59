#include "app/command_line_tokens.h"

#include <gtest/gtest.h>

namespace {

using Ids = std::vector<std::string>;

struct Case {
  std::string commandLine;
  bool updated;
  std::optional<Ids> installList;
  std::optional<std::string> source;
};

}  // namespace

TEST(CommandLineTokens, AreTakenApartAtEveryBlank) {
  const Case cases[] = {
      {"", false, {}, {}},
      {"install:gta,mtasa source:main", false, Ids{"gta", "mtasa"}, "main"},
      {"  source:main   install:gta ", false, Ids{"gta"}, "main"},
      {"install:", false, Ids{}, {}},
      {"install:a,,b", false, Ids{"a", "", "b"}, {}},
      {"install:,", false, Ids{"", ""}, {}},
      {"source:", false, {}, ""},
      {"install:a source:x install:b,c source:y", false, Ids{"b", "c"}, "y"},  // the last one counts, as a whole
      {"install:a install:", false, Ids{}, {}},
      {"install:a b", false, Ids{"a"}, {}},
      {"install:source:x", false, Ids{"source:x"}, {}},
      {"INSTALL:a Source:x install source", false, {}, {}},
      {"xinstall:a\tsource:x", false, {}, {}},
      {"install:\xD0\x96", false, Ids{"\xD0\x96"}, {}},
      {"updated", true, {}, {}},
      {"updated install:gta source:main", true, Ids{"gta"}, "main"},
      {"updatedinstall:a install:b", true, Ids{"b"}, {}},
      {" updated", false, {}, {}},
      {"source:a updated", false, {}, "a"},
      {"Updated", false, {}, {}},
  };
  for (const Case& c : cases) {
    const CommandLineRequest request = ParseCommandLineTokens(c.commandLine);
    EXPECT_EQ(request.updated, c.updated) << c.commandLine;
    EXPECT_EQ(request.installList, c.installList) << c.commandLine;
    EXPECT_EQ(request.source, c.source) << c.commandLine;
  }
}
