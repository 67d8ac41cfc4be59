// A package's file on the publishing machine, looked at once, as the player's program would take it.
#pragma once

#include <cstdint>
#include <set>
#include <string>
#include <vector>

#include "disk.h"
#include "install/zip_archive.h"

struct ArchiveEntry {
  ZipEntry info;
  int32_t opened = 0;     // result of opening it with the package's password
  bool unpacked = false;  // it was read to its end, is as long as announced, and is what was packed
  bool IsFolder() const { return info.name.ends_with('/') || info.name.ends_with('\\'); }
};

struct Archive {
  bool isArchive = false;
  bool complete = false;              // the list of entries was read to its end
  std::vector<ArchiveEntry> entries;  // in the archive's order
  uint64_t unpackedSize = 0;          // sum over all entries
  std::set<std::string> places;       // what is there after unpacking, as ComparablePath: files and their folders
};

struct PackageFile {
  std::string path;
  bool exists = false;
  uint64_t size = 0;
  std::string md5;  // empty when it couldn't be read
  Archive archive;  // of a package that is to be unpacked
  // What all packages with the same target bring, which may serve this one, too. Null unless this one lacks something
  // that it names.
  const std::set<std::string>* placesOfTarget = nullptr;
};

// Whether anything but its name is to be known of an entry.
enum class Unpack { No, Yes };

// Reads the archive's list, and with Unpack::Yes each entry to its end. The password may be empty.
Archive SurveyArchive(const std::string& path, const std::string& password, Unpack unpack, const Progress& progress);

// `isArchive`: it is to be unpacked.
PackageFile SurveyPackageFile(const std::string& path, bool isArchive, const std::string& password,
                              const Progress& progress);
