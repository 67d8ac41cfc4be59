// A folder with packages of every kind and a manifest without a mistake, for tests that then put one in.
#pragma once

#include <string>
#include <string_view>

class GoodSite {
 public:
  GoodSite();
  ~GoodSite();
  GoodSite(const GoodSite&) = delete;
  GoodSite& operator=(const GoodSite&) = delete;

  // The manifest's text; tests change it as they like.
  std::string manifest;

  // Where the packages world.zip, client.exe and guide.txt lie.
  std::string Files() const { return folder_ + "/packages"; }
  std::string File(const std::string& name) const { return Files() + "/" + name; }

  // Replaces the first occurrence; fails the test when there is none.
  void Replace(std::string_view from, std::string_view to);

  // Brings size, md5 and upsize of all packages up to what the files are now.
  void Refill();

 private:
  std::string folder_;
};

void WriteBytes(const std::string& path, std::string_view bytes);
std::string ReadBytes(const std::string& path);
