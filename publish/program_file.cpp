#include "program_file.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <optional>

#include "disk.h"
#include "system/text.h"

namespace {

constexpr uint16_t kMachineX86 = 0x14C, kMagicPe32 = 0x10B;
constexpr uint64_t kDirectoriesAt = 96, kResourceDirectory = 2, kSecurityDirectory = 4;
constexpr uint32_t kVersionResource = 16;
constexpr uint64_t kLargestSectionCount = 96;  // the loader's own limit

// Little-endian numbers of a file; what lies behind its end reads as 0.
class Bytes {
 public:
  explicit Bytes(std::string_view bytes) : bytes_(bytes) {}
  uint64_t Number(uint64_t at, size_t size) const {
    const std::string_view part = Part(at, size);
    uint64_t number = 0;
    if (part.size() < size) return 0;
    for (size_t i = size; i-- > 0;) number = number << 8 | static_cast<unsigned char>(part[i]);
    return number;
  }
  uint16_t Word(uint64_t at) const { return static_cast<uint16_t>(Number(at, 2)); }
  uint32_t Long(uint64_t at) const { return static_cast<uint32_t>(Number(at, 4)); }
  std::string_view Part(uint64_t at, size_t size) const {
    return at > bytes_.size() ? std::string_view() : bytes_.substr(static_cast<size_t>(at), size);
  }

 private:
  std::string_view bytes_;
};

struct Headers {
  uint64_t optional = 0;  // where the optional header begins
  uint64_t sections = 0;
  uint64_t sectionCount = 0;
};

// Where the file keeps what the loader puts at an address.
std::optional<uint64_t> OffsetOf(const Bytes& file, const Headers& headers, uint32_t address) {
  for (uint64_t i = 0; i < headers.sectionCount; ++i) {
    const uint64_t section = headers.sections + 40 * i;
    const uint32_t start = file.Long(section + 12), size = file.Long(section + 16), raw = file.Long(section + 20);
    if (address >= start && address - start < size) return uint64_t{raw} + (address - start);
  }
  return std::nullopt;
}

// The entry of a resource folder with this number, or the first one; as the offset that it points to below `base`.
std::optional<uint32_t> ResourceEntry(const Bytes& file, uint64_t folder, std::optional<uint32_t> number) {
  const uint64_t count = uint64_t{file.Word(folder + 12)} + file.Word(folder + 14);
  for (uint64_t i = 0; i < count; ++i) {
    const uint64_t entry = folder + 16 + 8 * i;
    if (!number || file.Long(entry) == *number) return file.Long(entry + 4) & 0x7FFFFFFF;
  }
  return std::nullopt;
}

std::string_view VersionResource(const Bytes& file, const Headers& headers) {
  const auto base = OffsetOf(file, headers, file.Long(headers.optional + kDirectoriesAt + 8 * kResourceDirectory));
  if (!base) return {};
  // Type, name, language.
  std::optional<uint32_t> at = ResourceEntry(file, *base, kVersionResource);
  for (int level = 0; at && level < 2; ++level) at = ResourceEntry(file, *base + *at, std::nullopt);
  if (!at) return {};
  const auto data = OffsetOf(file, headers, file.Long(*base + *at));
  return data ? file.Part(*data, file.Long(*base + *at + 4)) : std::string_view();
}

// The text behind a key of the version information: UTF-16, the key and the value each end with a zero, and the value
// begins at the next multiple of four.
std::string VersionText(std::string_view resource, std::string_view key) {
  std::string wideKey;
  for (const char c : key) wideKey += {c, '\0'};
  wideKey += std::string(2, '\0');
  const size_t found = resource.find(wideKey);
  if (found == std::string_view::npos) return "";
  const Bytes bytes(resource);
  std::wstring text;
  size_t at = (found + wideKey.size() + 3) / 4 * 4;
  while (bytes.Word(at) != 0) {
    text += static_cast<wchar_t>(bytes.Word(at));
    at += 2;
  }
  return WideToUtf8(text);
}

}  // namespace

ProgramFile ReadProgramBytes(std::string_view bytes) {
  ProgramFile program;
  const Bytes file(bytes);
  const uint64_t header = file.Long(0x3C);
  if (!bytes.starts_with("MZ") || file.Part(header, 4) != std::string_view("PE\0\0", 4)) return program;
  program.isProgram = true;
  Headers headers;
  headers.optional = header + 24;
  headers.sections = headers.optional + file.Word(header + 20);
  headers.sectionCount = std::min<uint64_t>(file.Word(header + 6), kLargestSectionCount);
  program.is32Bit = file.Word(header + 4) == kMachineX86 && file.Word(headers.optional) == kMagicPe32;
  if (!program.is32Bit) return program;
  program.isSigned = file.Long(headers.optional + kDirectoriesAt + 8 * kSecurityDirectory + 4) != 0;
  const std::string_view version = VersionResource(file, headers);
  program.productName = VersionText(version, "ProductName");
  program.productVersion = VersionText(version, "ProductVersion");
  return program;
}

ProgramFile ReadProgramFile(const std::string& path) {
  constexpr uint64_t kLargest = 256 << 20;
  if (SizeOfFile(path).value_or(0) > kLargest) return {};
  const auto bytes = ReadFile(path);
  return bytes ? ReadProgramBytes(*bytes) : ProgramFile();
}

bool LooksLikeProgram(const std::string& path) {
  std::string start(4096, '\0');
  std::ifstream file(PathFromUtf8(path), std::ios::binary);
  file.read(start.data(), static_cast<std::streamsize>(start.size()));
  start.resize(static_cast<size_t>(file.gcount()));
  return ReadProgramBytes(start).isProgram;
}
