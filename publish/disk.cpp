#include "disk.h"

#include <fstream>
#include <iterator>
#include <random>
#include <system_error>

namespace fs = std::filesystem;

fs::path PathFromUtf8(std::string_view name) { return fs::path(std::u8string(name.begin(), name.end())); }

std::string FileNameOf(std::string_view path) {
  const std::u8string name = PathFromUtf8(path).filename().u8string();
  return {name.begin(), name.end()};
}

std::optional<std::string> ReadFile(const std::string& name) {
  // A folder opens on some systems, and reads as nothing.
  if (!SizeOfFile(name)) return std::nullopt;
  std::ifstream file(PathFromUtf8(name), std::ios::binary);
  if (!file) return std::nullopt;
  std::string content{std::istreambuf_iterator<char>(file), {}};
  return file.bad() ? std::nullopt : std::optional(std::move(content));
}

std::optional<uint64_t> SizeOfFile(const std::string& name) {
  std::error_code error;
  const fs::path path = PathFromUtf8(name);
  if (!fs::is_regular_file(path, error)) return std::nullopt;
  const uint64_t size = fs::file_size(path, error);
  return error ? std::nullopt : std::optional(size);
}

namespace {

fs::path UnusedPathBeside(const fs::path& path) {
  std::random_device random;
  fs::path unused;
  std::error_code ignored;
  do {
    unused = path;
    unused += "." + std::to_string(random()) + ".new";
  } while (fs::exists(unused, ignored));
  return unused;
}

}  // namespace

bool ReplaceFile(const std::string& name, std::string_view content) {
  std::error_code error;
  // What a link points to is replaced, not the link.
  const fs::path path = fs::weakly_canonical(PathFromUtf8(name), error);
  if (error) return false;
  const fs::path unfinished = UnusedPathBeside(path);
  std::ofstream file(unfinished, std::ios::binary | std::ios::trunc);
  file.write(content.data(), static_cast<std::streamsize>(content.size()));
  file.close();
  if (file) fs::rename(unfinished, path, error);
  if (file && !error) return true;
  fs::remove(unfinished, error);
  return false;
}
