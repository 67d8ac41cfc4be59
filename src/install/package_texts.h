// The texts that a manifest, a package file and its record are made of, taken apart and put together. No Windows
// header: also built natively.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// A task text: pieces separated by "|". Every piece, empty ones included, also the one after a final "|". An empty text
// has no pieces.
std::vector<std::string> SplitTaskText(std::string_view text);

// An archive entry's path below the target folder: one wide character per byte, "\" between components, without
// "." components and doubled separators.
std::wstring EntryPath(std::string_view entryName);

// The record that lets a partial download resume: "<size>|<md5>" in a file beside the package file.
std::string FormatStatRecord(uint64_t size, std::string_view md5);

// Whether a record's bytes describe a package of this size and hash.
bool StatRecordMatches(std::string_view record, uint64_t size, std::string_view md5);

enum class RegistryRoot { LocalMachine, CurrentUser, ClassesRoot, CurrentConfig, Users };

struct RegistryKeyPath {
  RegistryRoot root = RegistryRoot::LocalMachine;
  std::string subkey;
};

// Takes "HKEY_...\subkey" apart. A text that begins with none of the five root names is a subkey of the local machine.
RegistryKeyPath ParseRegistryKeyPath(std::string_view text);

// The number that a registry value's data stands for: all decimal digits, what is too large becomes 4294967295; nothing
// for data that is text.
std::optional<uint32_t> ParseRegistryNumber(std::string_view data);

// Registry data with its first "{install_path}" replaced by the target folder (UTF-8).
std::string ExpandInstallPath(std::string text, const std::string& targetFolder);
