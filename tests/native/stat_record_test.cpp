#include "install/stat_record.h"

#include <gtest/gtest.h>

TEST(StatRecord, MatchesOnlyItsPackage) {
  const std::string md5 = "d41d8cd98f00b204e9800998ecf8427e";
  EXPECT_EQ(FormatStatRecord(UINT64_MAX, md5), "18446744073709551615|" + md5);
  const std::tuple<std::string, uint64_t, bool> cases[] = {
      {"4294967297|" + md5, 4294967297, true},
      {"4294967297|" + md5, 1, false},  // must not be cut to 32 bits
      {"18446744073709551617|" + md5, 1, false},
      {"7xyz|" + md5, 7, true},  // leading digits count
      {"1|" + md5 + "\n", 1, false},
      {"1|D41D8CD98F00B204E9800998ECF8427E", 1, false},
  };
  for (const auto& [record, size, matches] : cases) EXPECT_EQ(StatRecordMatches(record, size, md5), matches) << record;
}
