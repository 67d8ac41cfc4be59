#include "terminal.h"

#include <algorithm>
#include <chrono>
#include <iostream>

#include "findings.h"
#ifdef _WIN32
#include <io.h>
#define isatty _isatty
#else
#include <unistd.h>
#endif

namespace {

constexpr int kStandardError = 2;
constexpr size_t kLongestName = 60, kWidth = 72;
constexpr auto kPause = std::chrono::milliseconds(200);

bool IsTerminal() { return isatty(kStandardError) != 0; }

// Blanks cover what stood there before; not every console knows a control sequence for that.
std::string Padded(std::string text) {
  const auto begins = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };  // a character in UTF-8
  const auto columns = static_cast<size_t>(std::count_if(text.begin(), text.end(), begins));
  return text.append(columns < kWidth ? kWidth - columns : 0, ' ');
}

}  // namespace

Progress TerminalProgress() {
  if (!IsTerminal()) return {};
  return
      [last = std::chrono::steady_clock::time_point()](const std::string& what, uint64_t done, uint64_t total) mutable {
        const auto now = std::chrono::steady_clock::now();
        if (now - last < kPause) return;
        last = now;
        const std::string name = what.size() > kLongestName ? "..." + what.substr(what.size() - kLongestName) : what;
        const std::string share = total == 0 ? "" : "  " + std::to_string(done * 100 / total) + " %";
        std::cerr << "\r" << Padded(Printable(name) + share) << std::flush;
      };
}

void ClearProgress() {
  if (IsTerminal()) std::cerr << "\r" << Padded("") << "\r" << std::flush;
}
