// Where values stand in the text of a manifest, so that they can be changed and nothing else with them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// The text between the quotation marks of an attribute `value`.
struct ValueSpan {
  size_t package = 0;   // which one, in document order from 0
  std::string element;  // a child of that package
  int line = 0;
  size_t begin = 0, end = 0;
};

struct PackageValues {
  std::vector<ValueSpan> spans;  // in the order of the text
  size_t packageCount = 0;
};

// All values of the children of packages. The text must be well-formed.
PackageValues FindPackageValues(std::string_view text);
