#include "fuzz/fuzzing.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  FuzzOne(std::string(reinterpret_cast<const char*>(data), size));
  return 0;
}

void Require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "doesn't hold: %s\n", what);
  std::abort();
}

std::string TakeLine(std::string_view& rest) {
  const size_t end = std::min(rest.find('\n'), rest.size());
  const std::string line(rest.substr(0, end));
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return line;
}

bool LeadsOut(std::wstring_view path) {
  if (path.find(L':') != std::wstring_view::npos || path.find(L'\0') != std::wstring_view::npos) return true;
  if (path.starts_with(L'\\') || path.starts_with(L'/')) return true;
  int depth = 0;
  for (size_t start = 0; start <= path.size();) {
    const size_t end = std::min(path.find_first_of(L"\\/", start), path.size());
    std::wstring_view component = path.substr(start, end - start);
    // Dots and blanks at a name's end don't count: "..." and ".. " may be "..".
    component = component.substr(0, component.find_last_not_of(L". ") + 1);
    const bool onlyDots = component.empty() && end - start > 1;
    depth += onlyDots ? -1 : component.empty() ? 0 : 1;
    if (depth < 0) return true;
    start = end + 1;
  }
  return false;
}
