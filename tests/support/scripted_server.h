// An HTTP server on port 80 of the loopback interface that answers exactly what a test tells it, and keeps what it was
// sent, byte for byte. Through the TLS proxy of the test set-up it also answers for port 443.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

struct ScriptedAnswer {
  int status = 200;
  std::string body = {};
  bool honourRange = true;                // answer 206 with the rest of the body to a range request that it covers
  bool announceLength = true;             // send Content-Length
  bool page = false;                      // send Content-Type text/html
  bool gzip = false;                      // send Content-Encoding: gzip
  std::optional<size_t> closeAfter = {};  // close the connection after so many body bytes
  bool closeWithoutAnswer = false;        // close it before the first byte
  std::optional<size_t> stallAfter = {};  // wait for Resume() after so many body bytes
  bool stallBeforeAnswer = false;         // likewise, before the first byte
};

struct RecordedRequest {
  std::string method, target;                  // target: path and query
  std::map<std::string, std::string> headers;  // by name
  std::string body;
};

class ScriptedServer {
 public:
  ScriptedServer();
  ~ScriptedServer();
  ScriptedServer(const ScriptedServer&) = delete;
  ScriptedServer& operator=(const ScriptedServer&) = delete;

  // What a path (without query) is answered from now on; before that, and for unknown paths, 404 with an empty body.
  void Answer(const std::string& path, ScriptedAnswer answer);
  // What its next requests are answered, in order, before `Answer` applies.
  void AnswerNext(const std::string& path, ScriptedAnswer answer);

  // Lets every stalled answer go on.
  void Resume();
  // Blocks until an answer has stalled; false after ten seconds.
  bool WaitForStall();

  // All requests so far, or those of one path.
  std::vector<RecordedRequest> Requests() const;
  std::vector<RecordedRequest> RequestsOf(const std::string& path) const;

 private:
  struct State;
  State* state_;
};
