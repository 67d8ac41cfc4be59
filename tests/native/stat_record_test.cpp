#include "install/stat_record.h"

#include <gtest/gtest.h>

TEST(StatRecord, MatchesOnlyItsPackage) {
  struct Case {
    std::string record;
    uint64_t size;
    bool matches;
  };
  const std::string md5 = "d41d8cd98f00b204e9800998ecf8427e";
  EXPECT_EQ(FormatStatRecord(UINT64_MAX, md5), "18446744073709551615|" + md5);
  const Case cases[] = {
      {FormatStatRecord(4294967297, md5), 4294967297, true},
      {"4294967297|" + md5, 1, false},  // must not be cut to 32 bits
      {"18446744073709551617|" + md5, 1, false},
      {"1048576|" + md5, 1048577, false},
      {"1048576xyz|" + md5, 1048576, true},  // leading digits count
      {"x1048576|" + md5, 1048576, false},
      {"|" + md5, 0, true},
      {"1|" + md5 + "\n", 1, false},
      {"1|D41D8CD98F00B204E9800998ECF8427E", 1, false},
      {"1|", 1, false},
      {"1", 1, false},
      {"", 0, false},
      {std::string("1|" + md5).append(1, '\0'), 1, false},
  };
  for (const Case& c : cases) EXPECT_EQ(StatRecordMatches(c.record, c.size, md5), c.matches) << c.record;
}
