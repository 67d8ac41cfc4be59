#include "package_types.h"

#include <algorithm>
#include <charconv>
#include <iterator>

#include "ascii.h"

namespace {

constexpr size_t kMd5Length = 32;

// Windows numbers its special folders from 0 to 61 (CSIDL). These are views of the shell without a place on disk, or no
// folders at all; for them and everything beyond, Windows names no path.
constexpr int kLastFolderNumber = 61;
constexpr int kWithoutPath[] = {0, 1, 3, 4, 10, 12, 15, 17, 18, 49, 50, 51, 52, 60, 61};
constexpr int kCreateFlag = 0x8000;

bool IsFolderNumber(std::string_view text) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || number < 0) return false;
  number &= ~kCreateFlag;
  return number <= kLastFolderNumber &&
         std::find(std::begin(kWithoutPath), std::end(kWithoutPath), number) == std::end(kWithoutPath);
}

}  // namespace

bool IsKnownFolder(std::string_view folder) {
  if (folder == "{gtasa_folder}" || folder == "{mtasa_folder}" || folder == "{mtasa_cache_folder}") return true;
  return folder.size() > 2 && folder.starts_with('{') && folder.ends_with('}') &&
         IsFolderNumber(folder.substr(1, folder.size() - 2));
}

std::optional<int64_t> WholeNumber(std::string_view text) {
  const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (hexadecimal) text.remove_prefix(2);
  if (text.starts_with('-')) return std::nullopt;
  int64_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, hexadecimal ? 16 : 10);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return number;
}

std::string Md5Fault(std::string_view md5) {
  if (md5.empty()) return "";
  const std::string lower = LowerAscii(md5);
  if (md5.size() != kMd5Length || !IsLowerHex(lower)) {
    return "md5 must be 32 hexadecimal digits, not the " + std::to_string(md5.size()) + " characters of \"" +
           std::string(md5.substr(0, 2 * kMd5Length)) + "\"";
  }
  if (lower != md5) return "md5 must be lower case, e.g. " + lower.substr(0, 4) + "...; it would never match";
  return "";
}
