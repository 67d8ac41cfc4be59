// Each mistake is found by its check; and the same without that check finds nothing of it: so none passes by the work
// of another check.
#include "publish/mistakes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "check.h"

namespace {

std::string Line(const Finding& finding) {
  constexpr const char* kNames[] = {"note: ", "warning: ", "error: "};
  return kNames[static_cast<size_t>(finding.severity)] + (finding.subject.empty() ? "" : finding.subject + ": ") +
         finding.message;
}

Findings CheckSite(const GoodSite& site, std::set<std::string, std::less<>> skipped = {}) {
  return CheckManifest(*ParseManifestText("manifest.xml", site.manifest),
                       {.filesFolder = site.Files(), .skipped = std::move(skipped)});
}

std::string AllLines(const Findings& findings) {
  std::string lines;
  for (const Finding& finding : findings.list) lines += "\n" + Line(finding) + " [" + finding.check + "]";
  return lines;
}

TEST(Mistakes, AGoodSiteHasNone) {
  const GoodSite site;
  const Findings findings = CheckSite(site);
  EXPECT_TRUE(findings.list.empty()) << AllLines(findings);
}

TEST(Mistakes, NoneIsSeenInWhatTheInstallerTakes) {
  constexpr std::pair<const char*, const char*> kEdits[] = {
      {"filesize=\"123456\"", "filesize=\"0x1E240\""},
      {"<addon", "</tasks><tasks><addon"},
      {"<source key=\"mirror\" url", "</sources><sources><source key=\"mirror\" url"},
      {"value=\"3\"", "value=\"{0002DF01-0000-0000-C000-000000000046}\""},
      {"https://zendora.example/packages/guide.txt", "https://[::1]/guide.txt"},
      {"HKEY_CURRENT_USER\\Software\\World", "Software\\World"},
  };
  for (const auto& [from, to] : kEdits) {
    GoodSite site;
    site.Replace(from, to);
    EXPECT_EQ(AllLines(CheckSite(site)), "") << to;
  }
}

void ExpectFound(const Mistake& mistake) {
  SCOPED_TRACE(mistake.message);
  GoodSite site;
  mistake.commit(site);
  const auto hasMessage = [&](const Finding& finding) { return Line(finding).starts_with(mistake.message); };

  const Findings findings = CheckSite(site);
  EXPECT_EQ(std::count_if(findings.list.begin(), findings.list.end(), hasMessage), 1) << AllLines(findings);
  EXPECT_EQ(AllLines(findings).find("SECRET"), std::string::npos) << "a password is printed";

  const Findings without = CheckSite(site, {mistake.check});
  EXPECT_TRUE(std::none_of(without.list.begin(), without.list.end(), hasMessage)) << AllLines(without);
}

TEST(Mistakes, EachIsFoundByItsCheckAndEveryCheckHasOne) {
  std::set<std::string_view> checks;
  for (const auto mistakes : {ManifestMistakes(), FileMistakes()}) {
    for (const Mistake& mistake : mistakes) {
      ExpectFound(mistake);
      checks.insert(mistake.check);
    }
  }
  for (const std::string_view name : CheckNames()) EXPECT_TRUE(checks.contains(name)) << name;
}

// How often something is read for a manifest with this many packages, each of which names what only another one of the
// same folder could bring.
size_t ReadsOfPackagesInOneFolder(size_t count) {
  GoodSite site;
  site.Replace("game.exe|data/maps", "gone.exe|data/maps");
  const size_t begin = site.manifest.find("    <package>\n"), end = site.manifest.find("    <package>\n", begin + 1);
  const std::string package = site.manifest.substr(begin, end - begin);
  for (size_t i = 1; i < count; ++i) site.manifest.insert(begin, package);
  size_t reads = 0;
  CheckManifest(*ParseManifestText("m", site.manifest),
                {.filesFolder = site.Files(), .progress = [&](const std::string&, uint64_t, uint64_t) { ++reads; }});
  return reads;
}

TEST(Mistakes, AreLookedForOnceInEachPackageOfAFolder) {
  EXPECT_LT(ReadsOfPackagesInOneFolder(40), 6 * ReadsOfPackagesInOneFolder(10));
}

}  // namespace
