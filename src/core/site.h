// What the maker of a release decides: the program's version and the addresses of its web service and pages. All of it
// comes from variables of the build (ZENDORA_...).
#pragma once

#include <string>
#include <vector>

extern const char kProductVersion[];  // such as "4.0.8"

// Each is an https address below the site base.
std::wstring RepositoryAddress();    // answers with the packages manifest
std::wstring TelemetryAddress();     // takes reports
std::wstring DownloadPageAddress();  // where a person finds the latest version of the program

// What the About dialog links to: up to four addresses without "https://".
std::vector<std::wstring> AboutLinks();
