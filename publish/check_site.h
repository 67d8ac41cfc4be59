// The command `check-site`: asks the site for everything that a manifest names. It only ever asks, and sends nothing.
#pragma once

#include <string>

#include "disk.h"
#include "findings.h"
#include "manifest_file.h"

struct SiteOptions {
  std::string site;       // "https://host", or the manifest's own address
  bool download = false;  // read every file to its end and compare its MD5
  std::string caFile;     // certificates to trust instead of the system's; empty for those
  Progress progress;
};

struct SiteFindings {
  Findings findings;
  bool unreachable = false;  // some host didn't answer at all
};

SiteFindings CheckSite(const ManifestFile& manifest, const SiteOptions& options);
