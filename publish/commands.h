// What each command of zendora-publish does with its arguments. Results are exit codes.
#pragma once

#include <string>
#include <vector>

#include "check.h"
#include "describe.h"

// Exit codes. Findings win over nothing, the network over findings.
inline constexpr int kClean = 0, kFindings = 1, kUnusable = 2, kNetworkFailed = 3;

struct CheckArguments {
  std::string manifest, files;
  std::vector<std::string> skipped;
  bool strict = false, json = false;
};
int RunCheck(const CheckArguments& arguments);

struct FillArguments {
  std::string manifest, files, output;
};
int RunFill(const FillArguments& arguments);

struct DescribeArguments {
  Description description;
  std::string filetype;           // "zip", "installer" or "file"; empty: what it looks like
  std::vector<std::string> urls;  // KEY=URL
};
int RunDescribe(const DescribeArguments& arguments);

struct UpdaterArguments {
  std::string program, helpUrl;
  std::vector<std::string> urls;
};
int RunUpdater(const UpdaterArguments& arguments);

struct CheckSiteArguments {
  std::string site, manifest, caFile;
  bool download = false, strict = false, json = false;
};
int RunCheckSite(const CheckSiteArguments& arguments);
