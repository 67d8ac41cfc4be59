#include "install/registry_data.h"

#include <algorithm>
#include <limits>

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
