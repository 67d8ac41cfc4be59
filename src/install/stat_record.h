// The record that lets a partial download resume: "<size>|<md5>" in a file beside the package file. No Windows header:
// also built natively.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

std::string FormatStatRecord(uint64_t size, std::string_view md5);

// Whether a record's bytes describe a package of this size and hash.
bool StatRecordMatches(std::string_view record, uint64_t size, std::string_view md5);
