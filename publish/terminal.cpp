#include "terminal.h"

#include <chrono>
#include <iostream>
#ifdef _WIN32
#include <io.h>
#define isatty _isatty
#else
#include <unistd.h>
#endif

namespace {

constexpr int kStandardError = 2;
constexpr size_t kLongestName = 60;
constexpr auto kPause = std::chrono::milliseconds(200);

bool IsTerminal() { return isatty(kStandardError) != 0; }

}  // namespace

Progress TerminalProgress() {
  if (!IsTerminal()) return {};
  return
      [last = std::chrono::steady_clock::time_point()](const std::string& what, uint64_t done, uint64_t total) mutable {
        const auto now = std::chrono::steady_clock::now();
        if (now - last < kPause) return;
        last = now;
        const std::string name = what.size() > kLongestName ? "..." + what.substr(what.size() - kLongestName) : what;
        std::cerr << "\r\x1b[K" << name;
        if (total != 0) std::cerr << "  " << done * 100 / total << " %";
        std::cerr << std::flush;
      };
}

void ClearProgress() {
  if (IsTerminal()) std::cerr << "\r\x1b[K" << std::flush;
}
