#include "support/install_scenario.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "app/context.h"
#include "system/files.h"

std::string PackageXml(const std::string& filename, const std::string& md5, const std::string& sourcesXml,
                       const std::string& moreXml) {
  return "<package><title>Title of " + filename + "</title><filename value=\"" + filename + "\"/><md5 value=\"" + md5 +
         "\"/><size value=\"43\"/><upsize value=\"43\"/><sources>" + sourcesXml + "</sources>" + moreXml + "</package>";
}

std::string ManifestXml(const std::string& packagesXml) {
  return "<downloader><packages>" + packagesXml + "</packages></downloader>";
}

ScriptedAnswer Serving(const std::string& body) {
  ScriptedAnswer answer;
  answer.body = body;
  return answer;
}

InstallScenario::InstallScenario() {
  app.tmpPath.Set(folder / L"temporary");
  app.installPath.Set(folder / L"installed");
  app.manifestPath = folder / L"manifest.xml";
  app.uuid = "0b7e6c52-9b7e-4a3c-8a53-3f1f4f2f0c11";
  app.selectedSource.Set("main");
  EXPECT_EQ(CreateDirectories(folder / L"temporary"), 0u);
}

std::vector<std::wstring> InstallScenario::LogAfter(const std::wstring& first) const {
  std::vector<std::wstring> lines = window.LogLines();
  const auto found = std::find(lines.begin(), lines.end(), first);
  EXPECT_NE(found, lines.end()) << "the log lacks " << testing::PrintToString(first);
  lines.erase(lines.begin(), found == lines.end() ? found : found + 1);
  return lines;
}
