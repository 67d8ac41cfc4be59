// Windows program files, read as bytes; nothing of them is ever run.
#pragma once

#include <string>
#include <string_view>

struct ProgramFile {
  bool isProgram = false;                   // a Windows executable of any kind
  bool is32Bit = false;                     // for 32-bit x86
  bool isSigned = false;                    // it carries a signature, whatever that is worth
  std::string productName, productVersion;  // of its version information, UTF-8; empty where there is none
};

// What can't be read, or is broken, counts as absent; so does a file beyond 256 MB, which is no program of ours.
ProgramFile ReadProgramFile(const std::string& path);

// Whether a file of any size begins as a Windows executable does.
bool LooksLikeProgram(const std::string& path);
ProgramFile ReadProgramBytes(std::string_view bytes);
