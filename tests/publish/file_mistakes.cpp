#include <gtest/gtest.h>

#include <filesystem>

#include "publish/mistakes.h"
#include "support/zip_builder.h"
#include "system/text.h"

namespace {

using Commit = std::function<void(GoodSite&)>;

// Makes world.zip anew, and a manifest that says so.
void RebuildWorld(GoodSite& site, const std::vector<TestEntry>& entries) {
  BuildZip(Utf8ToWide(site.File("world.zip")), entries);
  site.Refill();
}

// One more entry in world.zip.
Commit Add(const TestEntry& entry) {
  return [=](GoodSite& site) {
    RebuildWorld(site, {{"game.exe", TestBytes(5000)}, {"data/maps/one.map", TestBytes(9000, 2)}, entry});
  };
}

// A secret entry in world.zip, and a manifest with another password.
void LockWorld(GoodSite& site) {
  site.Replace("<upsize", "<password value=\"wrong\"/><upsize");
  Add({"secret", "x", "correct"})(site);
}

// Other bytes in world.zip, so far behind the name "game.exe" in front of its content; or so far before that name in
// the directory at the archive's end, where the flags stand 38 bytes before it, the method 36 and the place of the
// entry 4.
Commit Patch(int offset, const std::string& bytes) {
  return [=](GoodSite& site) {
    std::string archive = ReadBytes(site.File("world.zip"));
    const size_t name = offset < 0 ? archive.rfind("game.exe") : archive.find("game.exe");
    WriteBytes(site.File("world.zip"), archive.replace(name + static_cast<size_t>(offset), bytes.size(), bytes));
    site.Refill();
  };
}

void RemoveGuide(GoodSite& site) { std::filesystem::remove(site.File("guide.txt")); }

void SpoilWorld(GoodSite& site) { WriteBytes(site.File("world.zip"), "Rar!"); }

void PackFolderItself(GoodSite& site) { RebuildWorld(site, {{"w/game.exe", "x"}, {"w/data/maps/one.map", "x"}}); }

const Mistake kMistakes[] = {
    {"file", "error: guide.txt: there is no file", RemoveGuide},
    {"file-size", "error: guide.txt: size says 16, but the file has 15", Edit("<size value=\"15", "<size value=\"16")},
    {"file-md5", "error: guide.txt: md5 is not the file's, which is 5de382d5", Edit("5de382d5", "00000000")},
    {"file-upsize", "error: world.zip: upsize says 14001, but the archive unpacks to 14000", Edit("14000", "14001")},
    {"file-upsize", "warning: guide.txt: upsize says 14, but the file is copied as it is, with 15 bytes",
     Edit("<upsize value=\"15\"", "<upsize value=\"14\"")},
    {"file-path", "warning: guide.txt: <verify> names \"guide.pdf\", but the package is one file, \"guide.txt\"",
     Edit("<folder value", "<verify value=\"guide.pdf\"/><folder value")},
    {"archive", "error: world.zip: the file is no zip archive", SpoilWorld},
    {"archive-content", "error: world.zip: entry \"game.exe\" is damaged", Patch(100, "????")},
    {"archive-method", "error: world.zip: entry \"game.exe\" is packed in a way", Patch(-36, "\x0E")},
    {"archive-encryption", "error: world.zip: entry \"game.exe\" is encrypted in a way", Patch(-38, "\x41")},
    {"archive-encryption", "error: world.zip: entry \"game.exe\" is encrypted in a way", Patch(-36, "c")},
    {"archive-password", "error: world.zip: entry \"secret\" is encrypted, but the manifest has no password",
     Add({"secret", "x", "correct"})},
    {"archive-password", "error: world.zip: entry \"secret\" doesn't open with the manifest's password", LockWorld},
    {"archive-password", "warning: world.zip: there is a password, but nothing in the archive is encrypted",
     Edit("<upsize", "<password value=\"any\"/><upsize")},
    {"archive-entry", "error: world.zip: entry \"game.exe\" can't be opened", Patch(-4, "\xFF\xFF")},
    {"archive-name", "error: world.zip: entry \"../../evil.dll\" has a name that the", Add({"../../evil.dll", "x"})},
    {"archive-name-ascii", "warning: world.zip: entry \"stra\u00DFe\" has letters", Add({"stra\u00DFe", "x"})},
    {"archive-repeated", "error: world.zip: entry \"Data/Maps/ONE.map\" is the same file as one before it",
     Add({"Data/Maps/ONE.map", "x"})},
    {"archive-long-path", "warning: world.zip: entry \"data/", Add({"data/" + std::string(240, 'x'), "x"})},
    {"archive-program", "error: world.zip: <execute> names \"data/maps\", which is a folder",
     Edit("<execute path=\"game.exe\"", "<execute path=\"data/maps\"")},
    {"archive-folder", "error: world.zip: entry \"data\" is a file, but other entries take", Add({"data", "x"})},
    {"archive-path", "error: world.zip: <verify> names \"gmae.exe\", which is not in", Edit("game.exe|", "gmae.exe|")},
    {"archive-path",
     "error: world.zip: <verify> names \"data/empty\", which is not in the archive; the archive has it,",
     Edit("game.exe|data/maps", "data/empty")},
    {"archive-path",
     "error: world.zip: <verify> names \"game.exe\", which is not in the archive; it stands below \"w/\"",
     PackFolderItself},
};

}  // namespace

std::span<const Mistake> FileMistakes() { return kMistakes; }
