// What an installation run needs around it: folders of its own, a window with the installation page, a server, a
// manifest. The test's thread plays the worker.
#pragma once

#include <string>
#include <vector>

#include "support/scripted_server.h"
#include "support/temp_folder.h"
#include "support/test_window.h"

// A file of 43 bytes that packages of tests consist of, and its hash.
inline constexpr char kFoxBody[] = "The quick brown fox jumps over the lazy dog";
inline constexpr char kFoxMd5[] = "9e107d9d372bb6826bd81d3542a419d6";
inline constexpr char kFoxPath[] = "/files/fox";
inline constexpr char kFoxUrl[] = "http://zendora.example/files/fox";
// As long as the first, but another file.
inline constexpr char kOtherBody[] = "The quick brown fox jumps over the lazy cat";
inline constexpr char kOtherMd5[] = "71bd588d5ad9b6abe87b831b45f8fa95";

inline constexpr char kRepositoryPath[] = "/play/files/repository.php";
inline constexpr char kTelemetryPath[] = "/play/files/telemetry.php";

// `sourcesXml` holds `source` elements, `moreXml` any other children of a package.
std::string PackageXml(const std::string& filename, const std::string& md5, const std::string& sourcesXml,
                       const std::string& moreXml = {});
std::string ManifestXml(const std::string& packagesXml);

// An answer with this body.
ScriptedAnswer Serving(const std::string& body);

class InstallScenario {
 public:
  InstallScenario();
  InstallScenario(const InstallScenario&) = delete;
  InstallScenario& operator=(const InstallScenario&) = delete;

  std::wstring Temporary(const std::wstring& name) const { return folder / (L"temporary\\" + name); }
  std::wstring Installed(const std::wstring& name) const { return folder / (L"installed\\" + name); }
  // The log from the line after `first` on.
  std::vector<std::wstring> LogAfter(const std::wstring& first) const;

  TempFolder folder;
  ScriptedServer server;
  TestWindow window;
};
