// Addresses of the product's web service and pages. The site base is a build option (ZENDORA_SITE_BASE).
#pragma once

#include <string>

// Each is an https address below the site base.
std::wstring RepositoryAddress();    // answers with the packages manifest
std::wstring TelemetryAddress();     // takes reports
std::wstring DownloadPageAddress();  // where a person finds the latest version of the program
