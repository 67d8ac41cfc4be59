// Manifests, archives and programs with broken bytes in them. Whatever they hold, the tool must come to an end and stay
// within its memory, which the sanitizers watch. The same faults every time.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "check.h"
#include "fill.h"
#include "program_file.h"
#include "publish/good_site.h"
#include "publish/program_bytes.h"
#include "support/zip_builder.h"
#include "system/text.h"

namespace {

using Random = std::mt19937;

size_t Below(Random& random, size_t limit) { return limit == 0 ? 0 : random() % limit; }

// Changes a byte, removes a part, doubles a part, cuts the end off, or puts in something that means something.
void Spoil(std::string& bytes, Random& random, const std::vector<std::string>& words) {
  const size_t at = Below(random, bytes.size()), length = Below(random, std::min<size_t>(bytes.size() - at, 64));
  switch (random() % 6) {
    case 0:
      if (!bytes.empty()) bytes[at] = static_cast<char>(random());
      break;
    case 1:
      bytes.erase(at, length);
      break;
    case 2:
      bytes.insert(at, bytes.substr(at, length));
      break;
    case 3:
      bytes.resize(at);
      break;
    case 4:
      bytes.insert(at, words[Below(random, words.size())]);
      break;
    default:
      bytes.replace(at, std::min<size_t>(bytes.size() - at, 4),
                    std::string(4, static_cast<char>(random() % 2 ? 0xFF : 0)));
  }
}

std::string Spoilt(std::string bytes, Random& random, const std::vector<std::string>& words) {
  for (size_t faults = 1 + Below(random, 4); faults > 0 && !bytes.empty(); --faults) Spoil(bytes, random, words);
  return bytes;
}

TEST(Fuzz, ManifestsDontBreakTheTool) {
  const GoodSite site;
  const std::vector<std::string> words = {"<",
                                          ">",
                                          "\"",
                                          "'",
                                          "<!--",
                                          "-->",
                                          "<![CDATA[",
                                          "]]>",
                                          "<?",
                                          "&#0;",
                                          "&#xD800;",
                                          "<package>",
                                          "</package>",
                                          "<packages/>",
                                          "value=\"",
                                          "{install_path}",
                                          "|",
                                          "0xFFFFFFFFFFFFFFFFFF",
                                          "../",
                                          std::string(1000, 'x'),
                                          std::string(1, '\0')};
  Random random(1);
  for (int i = 0; i < 1500; ++i) {
    const auto manifest = ParseManifestText("m", Spoilt(site.manifest, random, words));
    const Findings findings =
        CheckManifest(*manifest, {.filesFolder = i % 10 ? std::optional<std::string>() : site.Files()});
    for (const Finding& finding : findings.list) EXPECT_FALSE(finding.message.empty());
    if (manifest->root) FillManifest(*manifest, site.Files() + "/none", {});
  }
}

TEST(Fuzz, ArchivesDontBreakTheTool) {
  const GoodSite site;
  BuildZip(Utf8ToWide(site.File("world.zip")), {{"game.exe", TestBytes(3000)},
                                                {"data/", ""},
                                                {"data/secret", TestBytes(2000, 3), "secret"},
                                                {"data/stored", TestBytes(500, 4), "", true}});
  const std::string good = ReadBytes(site.File("world.zip"));
  const std::vector<std::string> words = {"PK\x01\x02", "PK\x03\x04", "PK\x05\x06", "PK\x06\x06", "PK\x06\x07"};
  const auto manifest = ParseManifestText("m", site.manifest);
  Random random(2);
  for (int i = 0; i < 1500; ++i) {
    WriteBytes(site.File("world.zip"), Spoilt(good, random, words));
    const Archive archive = SurveyArchive(site.File("world.zip"), "secret", Unpack::Yes, {});
    if (i % 20 == 0) CheckManifest(*manifest, {.filesFolder = site.Files()});
    EXPECT_LT(archive.entries.size(), 70000u);
  }
}

TEST(Fuzz, ProgramsDontBreakTheTool) {
  const std::string good = ProgramBytes({});
  Random random(3);
  for (int i = 0; i < 20000; ++i) ReadProgramBytes(Spoilt(good, random, {"MZ", "PE"}));
}

}  // namespace
