// What the packages manifest says. No Windows header: also built natively.
#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <vector>

enum class RegistryPhase : uint32_t { Pre = 0, Post = 1 };

// Registry values to write before (Pre) or after (Post) a package's files are placed.
struct RegistryItem {
  std::string keyPath;  // root key name, backslash, subkey
  RegistryPhase phase = RegistryPhase::Post;
  std::map<std::string, std::string> values;  // name -> data, written in name order
};

// Values of `filetype` that mean something: an archive, and an installer program. Any other file is copied.
inline constexpr char kZipType[] = "application/x-zip-compressed";
inline constexpr char kInstallerType[] = "application/x-msdownload";

// Narrow texts are the document's bytes.
struct Package {
  std::wstring title, group;
  std::wstring name;  // folder below the installation folder
  std::wstring tooltip;
  std::string filename;  // identifies the package; also the name of the downloaded file
  std::string filetype, password;
  std::string folder;                  // placeholder of a target folder; takes precedence over `name`
  int64_t size = 0, upsize = 0;        // bytes to download, bytes after installation
  std::string md5;                     // of the downloaded file; empty: not checked
  bool isDefault = false;              // checked at first
  std::string verify;                  // paths joined by "|"
  std::string link, install, execute;  // path, "|", title or arguments
  std::vector<std::string> addons;
  std::vector<RegistryItem> registryItems;
  std::map<std::string, std::string> sources;  // source key -> URL
};

struct DownloadSource {
  std::string key, title;
};

// The announced new program file; none while `md5` is empty.
struct UpdaterInfo {
  std::string md5;
  std::string helpURL;
  uint32_t filesize = 0;
  std::deque<std::string> urls;  // to be tried from the front
};

struct Manifest {
  std::map<std::string, Package> packages;        // by filename; entries are replaced by a load, never removed
  std::vector<std::string> packageOrder;          // filenames in document order; may hold one twice
  std::map<std::string, DownloadSource> sources;  // by key
  UpdaterInfo updater;
};
