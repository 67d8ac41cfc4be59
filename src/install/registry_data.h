// How the manifest writes registry keys and data. No Windows header: also built natively.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

enum class RegistryRoot { LocalMachine, CurrentUser, ClassesRoot, CurrentConfig, Users };

struct RegistryKeyPath {
  RegistryRoot root = RegistryRoot::LocalMachine;
  std::string subkey;
};

// Takes "HKEY_...\subkey" apart. A text that begins with none of the five root names is a subkey of the local machine.
RegistryKeyPath ParseRegistryKeyPath(std::string_view text);

// The number that a value's data stands for: all decimal digits, what is too large becomes 4294967295; nothing for data
// that is text.
std::optional<uint32_t> ParseRegistryNumber(std::string_view data);
