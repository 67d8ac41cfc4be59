// Single HTTP requests, through libcurl, and everything about their answers that is worth knowing.
#pragma once

#include <cstdint>
#include <ctime>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "disk.h"

// What becomes of a body: it is cut off where it begins, kept, or read to its end for its MD5.
enum class Body { Drop, Keep, Hash };

struct ProbeRequest {
  std::string url;
  std::string range = {};  // "1-": from the second byte on; empty: everything
  Body body = Body::Drop;
  bool followRedirects = true;
};

struct ProbeAnswer {
  std::string failure;                         // why there was no answer; empty when there was one
  bool unreachable = false;                    // the failure is the network's: no name, no connection, no word
  bool connected = false;                      // the host could be connected with
  std::string certificateFault;                // why the certificate isn't trusted; the request then went on without
  std::optional<std::time_t> certificateEnds;  // of a https answer
  long status = 0;
  std::map<std::string, std::string> headers;  // by lower-case name, of the last answer
  std::string finalUrl;                        // after redirects
  std::optional<uint64_t> length;              // announced
  uint64_t received = 0;
  std::string content;  // of Body::Keep; cut at 16 MB
  std::string md5;      // of Body::Hash

  std::string Header(const std::string& name) const {
    const auto found = headers.find(name);
    return found == headers.end() ? "" : found->second;
  }
};

// Keeps connections open between requests.
class HttpProbe {
 public:
  // `caFile`: certificates to trust instead of the system's; empty for those.
  explicit HttpProbe(std::string caFile);
  ~HttpProbe();

  ProbeAnswer Get(const ProbeRequest& request, const Progress& progress);

 private:
  struct State;
  std::unique_ptr<State> state_;
};
