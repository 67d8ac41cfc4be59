// An archive, as zendora-publish looks at it.
#include "fuzz/fuzzing.h"
#include "fuzz/memory_file.h"
#include "package_file.h"

void FuzzOne(const std::string& input) {
  SetMemoryFile(input);
  const Archive archive = SurveyArchive(kMemoryFile, "secret", Unpack::Yes, {});
  Require(archive.isArchive || archive.entries.empty(), "what is no archive has no entries");
  Require(archive.entries.size() <= input.size(), "there are no more entries than bytes");
  for (const ArchiveEntry& entry : archive.entries) {
    Require(!entry.unpacked || entry.opened == 0, "only what could be opened was unpacked");
  }
}
