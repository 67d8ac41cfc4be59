#include "app/command_line.h"

#include <gtest/gtest.h>

TEST(CommandLine, IsTakenApartAtEveryBlank) {
  using Ids = std::vector<std::string>;
  const auto request = ReadCommandLine("updatedsource:a install:x  source:b install:gta,,b INSTALL:a xsource:c");
  EXPECT_TRUE(request.updated);
  EXPECT_EQ(request.installList, (Ids{"gta", "", "b"})) << "the last one counts, as a whole";
  EXPECT_EQ(request.source, "b");
  EXPECT_FALSE(ReadCommandLine("source:a updated").updated);
  EXPECT_EQ(ReadCommandLine("install:").installList, Ids{});
}
