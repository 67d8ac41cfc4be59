// Transferring a package file from one address, through outages. Worker.
#pragma once

#include <cstdint>
#include <string>

#include "install/run_state.h"
#include "manifest/manifest_model.h"

// A package while it is being downloaded.
struct PackageDownload {
  RunState& run;
  const Package& package;
  StatsRecord& stats;
  uint64_t size;         // of the package file as the manifest has it
  std::wstring file;     // path of the package file
  uint64_t offset = 0;   // where the next transfer starts
  bool stale = false;    // what is there belongs to another package and could not be removed
  bool refused = false;  // a source told that what is there is no beginning of what it has
  bool held = false;     // another program keeps what is there from being proven: nothing may overwrite it
};

// Where a transfer that goes on with the present file starts: 0 when the file can't become right by getting longer.
uint64_t ResumeOffset(const PackageDownload& download);

// Writes the record that lets a later run resume; none for a package without `md5`.
void WriteStatRecord(const PackageDownload& download);

// Transfers the file from `url`, starting at download.offset. An https address whose secure channel fails is tried once
// over http; a brief outage, and answers that are cut short, are bridged by retries as run.retryRules tells. The
// outcome is that of the last attempt; `cancelled` also when the run was cancelled between attempts.
HttpResult TransferFromSource(PackageDownload& download, const std::wstring& url);
