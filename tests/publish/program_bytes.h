// A Windows program that does nothing: just what its headers and its version information say.
#pragma once

#include <cstdint>
#include <string>

struct ProgramKind {
  uint16_t machine = 0x14C;  // 32-bit x86
  uint16_t magic = 0x10B;    // PE32
  std::string productName = "Zendora Installer";
  std::string productVersion = "4.0.9";
};

std::string ProgramBytes(const ProgramKind& kind);
