#include "install/package_texts.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "system/path_names.h"
#include "system/text.h"

namespace {

// The number that the digits at the start of the text give; 0 without digits.
uint64_t LeadingNumber(std::string_view text) {
  uint64_t number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

}  // namespace

std::vector<std::string> SplitTaskText(std::string_view text) { return SplitKeepingEmpty(text, '|'); }

std::wstring EntryPath(std::string_view entryName) {
  std::wstring path = WidenBytes(entryName);
  std::replace(path.begin(), path.end(), L'/', L'\\');
  return NormalizePath(path);
}

std::string FormatStatRecord(uint64_t size, std::string_view md5) {
  return std::to_string(size).append("|").append(md5);
}

bool StatRecordMatches(std::string_view record, uint64_t size, std::string_view md5) {
  const std::vector<std::string> parts = SplitKeepingEmpty(record, '|');
  return parts.size() == 2 && LeadingNumber(parts[0]) == size && parts[1] == md5;
}

RegistryKeyPath ParseRegistryKeyPath(std::string_view text) {
  struct RootName {
    std::string_view name;
    RegistryRoot root;
  };
  constexpr RootName kRootNames[] = {
      {"HKEY_LOCAL_MACHINE", RegistryRoot::LocalMachine},
      {"HKEY_CURRENT_USER", RegistryRoot::CurrentUser},
      {"HKEY_CLASSES_ROOT", RegistryRoot::ClassesRoot},
      {"HKEY_CURRENT_CONFIG", RegistryRoot::CurrentConfig},
      {"HKEY_USERS", RegistryRoot::Users},
  };
  for (const RootName& known : kRootNames) {
    if (!text.starts_with(known.name)) continue;
    text.remove_prefix(std::min(text.size(), known.name.size() + 1));
    return {known.root, std::string(text)};
  }
  return {RegistryRoot::LocalMachine, std::string(text)};
}

std::optional<uint32_t> ParseRegistryNumber(std::string_view data) {
  constexpr uint64_t kMax = std::numeric_limits<uint32_t>::max();
  const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
  if (data.empty() || !std::all_of(data.begin(), data.end(), isDigit)) return std::nullopt;
  uint64_t number = 0;
  for (const char digit : data) number = std::min(number * 10 + static_cast<uint64_t>(digit - '0'), kMax);
  return static_cast<uint32_t>(number);
}

std::string ExpandInstallPath(std::string text, const std::string& targetFolder) {
  ReplaceFirst(text, "{install_path}", targetFolder);
  return text;
}
