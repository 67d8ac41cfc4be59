// The state of one installation run. Belongs to the worker thread.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "core/context.h"
#include "net/http_client.h"
#include "net/http_post_client.h"
#include "net/retry.h"
#include "net/telemetry_reports.h"
#include "system/handles.h"

// A package file that this run has proven, or, of a package without `md5`, transferred. It is kept open so that until
// it is placed nobody else can write, rename or delete it: it lies in a folder that every program of the user may write
// to, and an elevated instance may start it.
struct ProvenFile {
  uint64_t size = 0;
  std::string md5;
  FileHandle held;
};

struct RunState {
  // Copied from `app` at the start
  std::vector<std::string> installList;
  std::wstring installPath, tmpPath;
  std::string selectedSource;
  uint32_t initialLimitKB = 0;
  uint64_t startTick = 0;

  // Folders of games that are already there and are to be reinstalled in place, by package identifier.
  std::map<std::string, std::wstring> existingFolders;

  std::string installedList;  // identifiers joined by ",": first all of the run, then those that were installed
  std::string errorRecords;   // of the current phase
  PackageStats packageStats;
  std::map<std::string, ProvenFile> proven;  // by package identifier
  bool manifestRefreshed = false;
  uint64_t upsizeTotal = 0;  // sum of the packages' upsize
  uint64_t upsizeDone = 0;   // sum over the packages that the install phase is done with

  // A source that knows no ranges and always breaks off early must not be downloaded sixty times.
  RetryRules retryRules{.most = kPatience.retries, .mostRepeats = 3};
  HttpClient downloads{app.userAgent, app.cancelRequested.Token()};
  HttpPostClient reports{app.userAgent, app.cancelRequested.Token()};
};

// The outcome of putting a package into its place.
struct PlacementResult {
  bool ok = false;
  uint32_t error = 0;  // the system error that made it fail, 0 when there was none
};
