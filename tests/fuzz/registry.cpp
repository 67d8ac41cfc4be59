// Keys and data that a manifest wants written to the registry.
#include <cstdlib>

#include "fuzz/fuzzing.h"
#include "install/package_texts.h"

namespace {

void TryKey(const std::string& name) {
  const RegistryKeyPath path = ParseRegistryKeyPath(name);
  Require(name.ends_with(path.subkey), "a subkey is the end of the name");
  const bool hasRoot = path.subkey.size() < name.size();
  Require(hasRoot ? name.starts_with("HKEY_") : path.root == RegistryRoot::LocalMachine || name.empty(),
          "what has no root belongs to the machine");
}

void TryNumber(const std::string& data) {
  const auto number = ParseRegistryNumber(data);
  const bool plain = !data.empty() && data.find_first_not_of("0123456789") == std::string::npos;
  Require(number.has_value() == plain, "only digits are a number");
  if (plain && data.size() < 20) {
    const unsigned long long value = std::strtoull(data.c_str(), nullptr, 10);
    Require(*number == (value > UINT32_MAX ? UINT32_MAX : value), "a number is what its digits say");
  }
}

}  // namespace

void FuzzOne(const std::string& input) {
  std::string_view rest = input;
  const std::string folder = TakeLine(rest), text(rest);
  TryKey(text);
  TryNumber(text);

  constexpr std::string_view kPlaceholder = "{install_path}";
  const std::string expanded = ExpandInstallPath(text, folder);
  const size_t at = text.find(kPlaceholder);
  Require(expanded ==
              (at == std::string::npos ? text : text.substr(0, at) + folder + text.substr(at + kPlaceholder.size())),
          "the first placeholder, and nothing else, is replaced");
}
