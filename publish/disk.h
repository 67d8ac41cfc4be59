// Files of the publishing machine. Names are UTF-8 on every system.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

// Called while a file is read: what is read, bytes done, bytes in all.
using Progress = std::function<void(const std::string& what, uint64_t done, uint64_t total)>;

std::filesystem::path PathFromUtf8(std::string_view name);

// The last component of a path, in UTF-8.
std::string FileNameOf(std::string_view path);

// The whole file, or nothing when it can't be read.
std::optional<std::string> ReadFile(const std::string& name);

// Its size in bytes, or nothing when there is no such regular file.
std::optional<uint64_t> SizeOfFile(const std::string& name);

// Writes the file whole or not at all: what stood there stays until the new one is complete. False when that can't be
// done.
bool ReplaceFile(const std::string& name, std::string_view content);
