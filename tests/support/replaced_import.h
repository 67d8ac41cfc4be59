// Answers of Windows that a test machine never gives, such as "access denied" to its administrator. While it lives,
// calls of one imported function, from anywhere in the test program, go to the test's own.
//
// The import is declared by its symbol, which holds the size of the arguments:
//   extern "C" decltype(&CreateDirectoryW) importedCreateDirectory __asm__("__imp__CreateDirectoryW@8");
#pragma once

#include <windows.h>

template <typename Function>
class ReplacedImport {
 public:
  ReplacedImport(Function& import, Function replacement) : import_(import), original_(import) { Write(replacement); }
  ~ReplacedImport() { Write(original_); }
  ReplacedImport(const ReplacedImport&) = delete;
  ReplacedImport& operator=(const ReplacedImport&) = delete;

 private:
  void Write(Function function) {
    DWORD protection = 0;
    VirtualProtect(&import_, sizeof import_, PAGE_READWRITE, &protection);
    import_ = function;
    VirtualProtect(&import_, sizeof import_, protection, &protection);
  }

  Function& import_;
  const Function original_;
};
