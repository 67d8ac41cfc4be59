#include "system/path_names.h"

#include <algorithm>
#include <array>
#include <cwctype>

namespace {

constexpr std::wstring_view kSeparators = L"\\/";

wchar_t UpperAscii(wchar_t c) { return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c; }

// Windows takes these as devices in every folder, whatever stands behind a dot. The superscript digits count too.
bool IsReservedDeviceName(std::wstring_view name) {
  std::wstring stem(name.substr(0, name.find(L'.')));
  while (!stem.empty() && stem.back() == L' ') stem.pop_back();
  std::transform(stem.begin(), stem.end(), stem.begin(), UpperAscii);
  constexpr std::array<std::wstring_view, 6> kPlain = {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$"};
  if (std::find(kPlain.begin(), kPlain.end(), stem) != kPlain.end()) return true;
  constexpr std::wstring_view kPortDigits = L"0123456789\u00B9\u00B2\u00B3";
  return stem.size() == 4 && (stem.starts_with(L"COM") || stem.starts_with(L"LPT")) &&
         kPortDigits.find(stem[3]) != std::wstring_view::npos;
}

}  // namespace

std::wstring JoinPath(std::wstring_view folder, std::wstring_view name) {
  std::wstring path(folder);
  if (path.empty() || !IsSeparator(path.back())) path += L'\\';
  path += name;
  return path;
}

bool IsSeparator(wchar_t c) { return kSeparators.find(c) != std::wstring_view::npos; }

std::wstring NormalizePath(std::wstring_view path) {
  std::wstring normal;
  for (size_t start = 0; start < path.size();) {
    const size_t end = std::min(path.find_first_of(kSeparators, start), path.size());
    const std::wstring_view component = path.substr(start, end - start);
    const bool counts = !component.empty() && component != L".";
    if (counts) normal += component;
    if (end < path.size() && (counts || end == 0)) normal += path[end];
    start = end + 1;
  }
  return normal;
}

std::wstring LastComponent(std::wstring_view path) {
  const size_t separator = path.find_last_of(kSeparators);
  return std::wstring(separator == std::wstring_view::npos ? path : path.substr(separator + 1));
}

std::wstring ParentFolder(std::wstring_view path) {
  const size_t separator = path.find_last_of(kSeparators);
  if (separator == std::wstring_view::npos) return {};
  const bool drive_root = separator == 2 && path[1] == L':';
  return std::wstring(path.substr(0, drive_root ? separator + 1 : separator));
}

bool IsSafeFileName(std::wstring_view name) {
  if (name.empty() || name.back() == L'.' || name.back() == L' ') return false;
  constexpr std::wstring_view kForbidden = L"\\/:<>\"|?*";
  const auto forbidden = [&](wchar_t c) { return c < 0x20 || kForbidden.find(c) != std::wstring_view::npos; };
  return std::none_of(name.begin(), name.end(), forbidden) && !IsReservedDeviceName(name);
}

bool IsSafeRelativePath(std::wstring_view path) {
  if (!path.empty() && IsSeparator(path.back())) path.remove_suffix(1);
  size_t start = 0;
  while (true) {
    const size_t end = std::min(path.find_first_of(kSeparators, start), path.size());
    if (!IsSafeFileName(path.substr(start, end - start))) return false;
    if (end == path.size()) return true;
    start = end + 1;
  }
}
