#include "address.h"

#include <algorithm>
#include <cctype>

#include "ascii.h"
#include "findings.h"
#include "md5.h"

namespace {

constexpr std::string_view kHttp = "http://", kHttps = "https://";

// What stands between the scheme and the path; empty without a scheme.
std::string_view AuthorityOf(std::string_view url) {
  const size_t scheme = url.find("://");
  if (scheme == std::string_view::npos) return {};
  url.remove_prefix(scheme + 3);
  return url.substr(0, url.find_first_of("/?#"));
}

// Where the colon before a port stands; those of an IPv6 address stand in brackets.
size_t PortAt(std::string_view authority) { return authority.find(':', authority.rfind(']') + 1); }

bool IsUrlCharacter(char c) {
  return c > ' ' && c < 0x7F && std::string_view("\"<>\\^`{|}").find(c) == std::string_view::npos;
}

// What stands before an "@" may be a password, which is never printed.
std::string TheAddress(std::string_view url) {
  if (url.find('@') != std::string_view::npos) return "the address ";
  return "the address " + Quoted(url) + " ";
}

}  // namespace

std::string AddressFault(std::string_view url) {
  if (url.empty()) return "the address is empty";
  const std::string_view authority = AuthorityOf(url);
  if (authority.find('@') != std::string_view::npos)
    return "an address with a user name or password in it can't be used";
  const std::string subject = TheAddress(url);
  if (!url.starts_with(kHttp) && !url.starts_with(kHttps))
    return subject + "must begin with https:// or http://, in lower case";
  if (!std::all_of(url.begin(), url.end(), IsUrlCharacter)) {
    return subject + "holds a blank or another character that must be written as %..";
  }
  if (authority.empty()) return subject + "has no host";
  if (PortAt(authority) != std::string_view::npos)
    return subject + "names a port; the installer always asks the usual one";
  return "";
}

std::string AddressWeakness(std::string_view url) {
  const std::string subject = TheAddress(url);
  if (url.starts_with(kHttp)) return subject + "is http: everybody on the way can read it and change it";
  if (url.find('#') != std::string_view::npos) return subject + "has a \"#\" part, which servers never see";
  return "";
}

std::string SiteOf(std::string_view url) {
  const std::string_view authority = AuthorityOf(url);
  if (authority.empty()) return "";
  return LowerAscii(url.substr(0, static_cast<size_t>(authority.data() - url.data()) + authority.size()));
}

std::string HostOf(std::string_view url) {
  const std::string_view authority = AuthorityOf(url);
  return LowerAscii(authority.substr(0, PortAt(authority)));
}

std::string UrlEscaped(std::string_view name) {
  std::string escaped;
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    const bool plain =
        std::isalnum(byte) != 0 || std::string_view("-._~!$'()*+,;=:@").find(c) != std::string_view::npos;
    escaped += plain ? std::string(1, c) : "%" + HexText(&byte, 1);
  }
  return escaped;
}
