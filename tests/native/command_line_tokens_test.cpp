#include "app/command_line_tokens.h"

#include <gtest/gtest.h>

TEST(CommandLineTokens, AreTakenApartAtEveryBlank) {
  using Ids = std::vector<std::string>;
  const auto request = ParseCommandLineTokens("updatedsource:a install:x  source:b install:gta,,b INSTALL:a xsource:c");
  EXPECT_TRUE(request.updated);
  EXPECT_EQ(request.installList, (Ids{"gta", "", "b"})) << "the last one counts, as a whole";
  EXPECT_EQ(request.source, "b");
  EXPECT_FALSE(ParseCommandLineTokens("source:a updated").updated);
  EXPECT_EQ(ParseCommandLineTokens("install:").installList, Ids{});
}
