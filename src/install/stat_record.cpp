#include "install/stat_record.h"

#include <charconv>
#include <vector>

#include "system/text.h"

namespace {

// The number that the digits at the start of the text give; 0 without digits.
uint64_t LeadingNumber(std::string_view text) {
  uint64_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

}  // namespace

std::string FormatStatRecord(uint64_t size, std::string_view md5) {
  return std::to_string(size).append("|").append(md5);
}

bool StatRecordMatches(std::string_view record, uint64_t size, std::string_view md5) {
  const std::vector<std::string> parts = SplitKeepingEmpty(record, '|');
  return parts.size() == 2 && LeadingNumber(parts[0]) == size && parts[1] == md5;
}
