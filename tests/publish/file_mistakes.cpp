#include <gtest/gtest.h>

#include <filesystem>

#include "publish/mistakes.h"
#include "support/zip_builder.h"
#include "system/text.h"

namespace {

const std::string kGuideMd5 = "5de382d555907eccbeacfbb9c870c410";

// Changes bytes of the archive where a pattern stands for the n-th time, counted from 1.
void PatchWorld(GoodSite& site, const std::string& pattern, size_t offset, const std::string& bytes, int nth = 1) {
  std::string archive = ReadBytes(site.File("world.zip"));
  size_t at = archive.find(pattern);
  for (; nth > 1; --nth) at = archive.find(pattern, at + 1);
  ASSERT_NE(at, std::string::npos);
  archive.replace(at + offset, bytes.size(), bytes);
  WriteBytes(site.File("world.zip"), archive);
  site.Refill();
}

// An entry of the archive's directory at its end begins so; the flags stand 8 and the method 10 bytes further.
const std::string kDirectoryEntry("PK\x01\x02", 4);

const Mistake kMistakes[] = {
    {"file",
     "error: guide.txt: there is no file",
     {},
     [](GoodSite& site) { std::filesystem::remove(site.File("guide.txt")); }},
    {"file-size",
     "error: guide.txt: size says 16, but the file has 15 bytes",
     {{"<size value=\"15\"", "<size value=\"16\""}}},
    {"file-md5",
     "error: guide.txt: md5 is not the file's, which is 5de382d555907eccbeacfbb9c870c410",
     {{kGuideMd5, "0123456789abcdef0123456789abcdef"}}},
    {"file-upsize",
     "error: world.zip: upsize says 14001, but the archive unpacks to 14000 bytes",
     {{"<upsize value=\"14000\"", "<upsize value=\"14001\""}}},
    {"file-upsize",
     "warning: guide.txt: upsize says 14, but the file is copied as it is, with 15 bytes",
     {{"<upsize value=\"15\"", "<upsize value=\"14\""}}},
    {"file-path",
     "warning: guide.txt: <verify> names \"guide.pdf\", but the package is one file, \"guide.txt\"",
     {{"<folder value", "<verify value=\"guide.pdf\"/><folder value"}}},
    {"archive",
     "error: world.zip: the file is no zip archive",
     {},
     [](GoodSite& site) {
       WriteBytes(site.File("world.zip"), "Rar!");
       site.Replace("application/x-zip-compressed", "");
       site.Refill();
       site.Replace("<filetype value=\"\"", "<filetype value=\"application/x-zip-compressed\"");
     }},
    {"archive-content",
     "error: world.zip: entry \"game.exe\" is damaged",
     {},
     [](GoodSite& site) { PatchWorld(site, "game.exe", 100, "????"); }},
    {"archive-method",
     "error: world.zip: entry \"game.exe\" is packed in a way that the installer can't unpack",
     {},
     [](GoodSite& site) { PatchWorld(site, kDirectoryEntry, 10, std::string("\x0E", 1), 2); }},
    {"archive-encryption",
     "error: world.zip: entry \"game.exe\" is encrypted in a way that the installer can't undo",
     {},
     [](GoodSite& site) { PatchWorld(site, kDirectoryEntry, 8, std::string("\x41", 1), 2); }},
    {"archive-encryption",
     "error: world.zip: entry \"game.exe\" is encrypted in a way that the installer can't undo",
     {},
     [](GoodSite& site) { PatchWorld(site, kDirectoryEntry, 10, "c", 2); }},
    {"archive-password",
     "error: world.zip: entry \"secret\" is encrypted, but the manifest has no password",
     {},
     [](GoodSite& site) {
       AddToWorld(site, {"secret", "x", "correct"});
     }},
    {"archive-password",
     "error: world.zip: entry \"secret\" doesn't open with the manifest's password",
     {{"<upsize", "<password value=\"wrong\"/><upsize"}},
     [](GoodSite& site) {
       AddToWorld(site, {"secret", "x", "correct"});
     }},
    {"archive-password",
     "warning: world.zip: there is a password, but nothing in the archive is encrypted",
     {{"<upsize", "<password value=\"any\"/><upsize"}}},
    {"archive-entry",
     "error: world.zip: entry \"game.exe\" can't be opened",
     {},
     [](GoodSite& site) { PatchWorld(site, kDirectoryEntry, 42, "\xFF\xFF", 2); }},
    {"archive-name",
     "error: world.zip: entry \"../../evil.dll\" has a name that the installer refuses",
     {},
     [](GoodSite& site) {
       AddToWorld(site, {"../../evil.dll", "x"});
     }},
    {"archive-name-ascii",
     "warning: world.zip: entry \"data/stra\u00DFe.map\" has letters beyond ASCII",
     {},
     [](GoodSite& site) {
       AddToWorld(site, {"data/stra\u00DFe.map", "x"});
     }},
    {"archive-repeated",
     "error: world.zip: entry \"Data/Maps/ONE.map\" is the same file as one before it",
     {},
     [](GoodSite& site) {
       AddToWorld(site, {"Data/Maps/ONE.map", "x"});
     }},
    {"archive-long-path",
     "warning: world.zip: entry \"data/",
     {},
     [](GoodSite& site) {
       AddToWorld(site, {"data/" + std::string(240, 'x'), "x"});
     }},
    {"archive-program",
     "error: world.zip: <execute> names \"data/maps\", which is a folder",
     {{"<execute path=\"game.exe\"", "<execute path=\"data/maps\""}}},
    {"archive-folder",
     "error: world.zip: entry \"data\" is a file, but other entries take it for a folder",
     {},
     [](GoodSite& site) {
       AddToWorld(site, {"data", "x"});
     }},
    {"archive-path",
     "error: world.zip: <verify> names \"gmae.exe\", which is not in the archive",
     {{"game.exe|data", "gmae.exe|data"}}},
    {"archive-path",
     "error: world.zip: <verify> names \"data/empty\", which is not in the archive; the archive has it, but empty",
     {{"game.exe|data/maps", "data/empty"}}},
    {"archive-path",
     "error: world.zip: <verify> names \"data/maps\", which is not in the archive; it stands below \"world/\"",
     {{"game.exe|data/maps", "data/maps"},
      {"<link path=\"game.exe\"", "<link path=\"world/game.exe\""},
      {"<execute path=\"game.exe\"", "<execute path=\"world/game.exe\""}},
     [](GoodSite& site) {
       RebuildWorld(site, {{"world/game.exe", "x"}, {"world/data/maps/one.map", "x"}});
     }},
};

}  // namespace

std::span<const Mistake> FileMistakes() { return kMistakes; }

void RebuildWorld(GoodSite& site, const std::vector<TestEntry>& entries) {
  BuildZip(Utf8ToWide(site.File("world.zip")), entries);
  site.Refill();
}

void AddToWorld(GoodSite& site, const TestEntry& more) {
  RebuildWorld(site, {{"game.exe", TestBytes(5000)}, {"data/maps/one.map", TestBytes(9000, 2)}, more});
}
