// The record beside a partial download, which every program of the user may change.
#include <cstdlib>

#include "fuzz/fuzzing.h"
#include "install/package_texts.h"

void FuzzOne(const std::string& input) {
  // What the record seems to describe.
  const size_t bar = input.find('|');
  const uint64_t size = std::strtoull(input.c_str(), nullptr, 10);
  const std::string rest = bar == std::string::npos ? input : input.substr(bar + 1);
  const std::string md5 = rest.substr(0, rest.find('|'));

  if (StatRecordMatches(input, size, md5)) {
    Require(!StatRecordMatches(input, size + 1, md5), "a record is about one size");
    Require(!StatRecordMatches(input, size, md5 + "0"), "a record is about one hash");
    Require(input.ends_with("|" + md5), "a record ends with its hash");
  }
  Require(StatRecordMatches(FormatStatRecord(size, md5), size, md5), "a record is read as it was written");
}
