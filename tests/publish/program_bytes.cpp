#include "publish/program_bytes.h"

namespace {

std::string Number(uint64_t number, size_t size) {
  std::string bytes;
  for (; size > 0; --size, number >>= 8) bytes += static_cast<char>(number & 0xFF);
  return bytes;
}

void Put(std::string& bytes, size_t at, const std::string& part) {
  if (bytes.size() < at + part.size()) bytes.resize(at + part.size());
  bytes.replace(at, part.size(), part);
}

// One string of the version information: lengths, type, key and value in UTF-16, padded to a multiple of four.
std::string VersionString(const std::string& key, const std::string& value) {
  std::string text = Number(0, 4) + Number(1, 2);
  for (const char c : key) text += {c, '\0'};
  text += Number(0, 2);
  text.resize((text.size() + 3) / 4 * 4);
  for (const char c : value) text += {c, '\0'};
  text += Number(0, 2);
  text.resize((text.size() + 3) / 4 * 4);
  return text;
}

// A resource folder with one entry: its number, and where it leads.
std::string ResourceFolder(uint32_t number, uint32_t target) {
  return std::string(12, '\0') + Number(0, 2) + Number(1, 2) + Number(number, 4) + Number(target, 4);
}

}  // namespace

std::string ProgramBytes(const ProgramKind& kind) {
  constexpr size_t kHeader = 0x40, kOptional = kHeader + 24, kOptionalSize = 0xE0, kSection = kOptional + kOptionalSize;
  constexpr uint32_t kAddress = 0x1000, kRaw = 0x200, kSubfolder = 0x80000000;
  std::string file = "MZ";
  Put(file, 0x3C, Number(kHeader, 4));
  Put(file, kHeader, std::string("PE\0\0", 4) + Number(kind.machine, 2) + Number(1, 2));
  Put(file, kHeader + 20, Number(kOptionalSize, 2));
  Put(file, kOptional, Number(kind.magic, 2));
  Put(file, kOptional + 96 + 16, Number(kAddress, 4));

  std::string version;
  if (!kind.productName.empty()) version += VersionString("ProductName", kind.productName);
  if (!kind.productVersion.empty()) version += VersionString("ProductVersion", kind.productVersion);
  std::string resources = ResourceFolder(16, kSubfolder | 24) + ResourceFolder(1, kSubfolder | 48) +
                          ResourceFolder(0x409, 72) + Number(kAddress + 88, 4) + Number(version.size(), 4) +
                          Number(0, 8) + version;
  Put(file, kSection + 12, Number(kAddress, 4) + Number(resources.size(), 4) + Number(kRaw, 4));
  Put(file, kRaw, resources);
  return file;
}
