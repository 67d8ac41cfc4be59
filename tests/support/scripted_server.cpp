#include "support/scripted_server.h"

#include <gtest/gtest.h>
#include <winsock2.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <mutex>
#include <string_view>
#include <thread>

#include "system/handles.h"

namespace {

constexpr size_t kChunk = 4096;

struct SocketTraits {
  using Type = SOCKET;
  static Type Invalid() { return INVALID_SOCKET; }
  static void Close(Type handle) { closesocket(handle); }
};
using Socket = UniqueHandle<SocketTraits>;

sockaddr_in LoopbackAddress(u_short port) {
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

Socket Listen() {
  Socket listener(socket(AF_INET, SOCK_STREAM, IPPROTO_TCP));
  // The last test's connections may not have left the port yet.
  const BOOL on = TRUE;
  setsockopt(listener.Get(), SOL_SOCKET, SO_REUSEADDR, reinterpret_cast<const char*>(&on), sizeof on);
  const sockaddr_in address = LoopbackAddress(80);
  if (bind(listener.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    ADD_FAILURE() << "port 80 can't be bound: " << WSAGetLastError();
    std::abort();  // every later line of the test would only hide this one
  }
  listen(listener.Get(), SOMAXCONN);
  return listener;
}

// `raw` ends with the empty line.
RecordedRequest ParseRequest(const std::string& raw) {
  RecordedRequest request;
  const size_t first_blank = raw.find(' ');
  const size_t second_blank = raw.find(' ', first_blank + 1);
  request.method = raw.substr(0, first_blank);
  request.target = raw.substr(first_blank + 1, second_blank - first_blank - 1);
  size_t line = raw.find("\r\n") + 2;
  for (size_t end; (end = raw.find("\r\n", line)) != line; line = end + 2) {
    const size_t colon = raw.find(':', line);
    const size_t value = raw.find_first_not_of(' ', colon + 1);
    request.headers[raw.substr(line, colon - line)] = raw.substr(value, end - value);
  }
  return request;
}

std::string PathOf(const RecordedRequest& request) { return request.target.substr(0, request.target.find('?')); }

// What is sent for one request: the answer's head, and the part of its body that the request asks for.
struct Response {
  std::string head;
  std::string_view body;
};

Response BuildResponse(const RecordedRequest& request, const ScriptedAnswer& answer) {
  Response response{"", answer.body};
  int status = answer.status;
  std::string range_header;
  const auto range = request.headers.find("Range");
  if (status == 200 && answer.honourRange && range != request.headers.end()) {
    const uint64_t start = std::strtoull(range->second.c_str() + std::string_view("bytes=").size(), nullptr, 10);
    if (start < answer.body.size()) {
      status = 206;
      response.body.remove_prefix(static_cast<size_t>(start));
      range_header = "Content-Range: bytes " + std::to_string(start) + "-" + std::to_string(answer.body.size() - 1) +
                     "/" + std::to_string(answer.body.size()) + "\r\n";
    }
  }
  response.head = "HTTP/1.1 " + std::to_string(status) + " Scripted\r\nConnection: close\r\n" + range_header;
  if (answer.announceLength) {
    response.head += "Content-Length: " + std::to_string(response.body.size()) + "\r\n";
  }
  if (answer.page) response.head += "Content-Type: text/html; charset=UTF-8\r\n";
  if (answer.gzip) response.head += "Content-Encoding: gzip\r\n";
  response.head += "\r\n";
  return response;
}

}  // namespace

struct ScriptedServer::State {
  const Socket listener = Listen();
  std::atomic<bool> stopping = false;
  std::thread acceptor;
  std::vector<std::thread> connections;  // of the acceptor, until it has ended

  mutable std::mutex mutex;  // for all below
  std::condition_variable changed;
  std::map<std::string, ScriptedAnswer> answers;
  std::map<std::string, std::deque<ScriptedAnswer>> nextAnswers;
  std::vector<RecordedRequest> requests;
  int stalled = 0;  // answers
  int resumes = 0;

  void Accept();
  void Serve(Socket connection);
  bool Receive(SOCKET connection, std::string& bytes) const;
  bool ReceiveRequest(SOCKET connection, RecordedRequest& request) const;
  bool Send(SOCKET connection, std::string_view bytes) const;
  ScriptedAnswer Record(const RecordedRequest& request);
  bool SendBody(SOCKET connection, std::string_view body, const ScriptedAnswer& answer);
  bool Stall();
};

void ScriptedServer::State::Accept() {
  while (true) {
    Socket connection(accept(listener.Get(), nullptr, nullptr));
    if (stopping) return;
    if (!connection) continue;
    const DWORD receiveLimitMs = 50;  // after which a connection looks whether the server stops
    setsockopt(connection.Get(), SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<const char*>(&receiveLimitMs),
               sizeof receiveLimitMs);
    connections.emplace_back([this, owned = std::move(connection)]() mutable { Serve(std::move(owned)); });
  }
}

void ScriptedServer::State::Serve(Socket connection) {
  RecordedRequest request;
  if (!ReceiveRequest(connection.Get(), request)) return;
  const ScriptedAnswer answer = Record(request);
  if (answer.stallBeforeAnswer && !Stall()) return;
  if (!answer.closeWithoutAnswer) {
    const Response response = BuildResponse(request, answer);
    if (!Send(connection.Get(), response.head) || !SendBody(connection.Get(), response.body, answer)) return;
  }
  // A close with something unread would reset the connection and could destroy what is still under way.
  shutdown(connection.Get(), SD_SEND);
  std::string rest;
  while (Receive(connection.Get(), rest)) rest.clear();
}

// Appends what has come; false at the end of the connection, or when the server stops.
bool ScriptedServer::State::Receive(SOCKET connection, std::string& bytes) const {
  char chunk[kChunk];
  int count;
  do {
    count = recv(connection, chunk, sizeof chunk, 0);
  } while (count < 0 && WSAGetLastError() == WSAETIMEDOUT && !stopping);
  if (count <= 0) return false;
  bytes.append(chunk, static_cast<size_t>(count));
  return true;
}

bool ScriptedServer::State::ReceiveRequest(SOCKET connection, RecordedRequest& request) const {
  constexpr std::string_view kHeadEnd = "\r\n\r\n";
  std::string bytes;
  size_t head_end;
  while ((head_end = bytes.find(kHeadEnd)) == std::string::npos) {
    if (!Receive(connection, bytes)) return false;
  }
  const size_t head_size = head_end + kHeadEnd.size();
  request = ParseRequest(bytes.substr(0, head_size));
  request.body = bytes.substr(head_size);
  const auto length = request.headers.find("Content-Length");
  const size_t expected = length == request.headers.end() ? 0 : std::strtoul(length->second.c_str(), nullptr, 10);
  while (request.body.size() < expected) {
    if (!Receive(connection, request.body)) return false;
  }
  return true;
}

bool ScriptedServer::State::Send(SOCKET connection, std::string_view bytes) const {
  while (!bytes.empty()) {
    const int count = send(connection, bytes.data(), static_cast<int>(bytes.size()), 0);
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<size_t>(count));
  }
  return true;
}

// Keeps the request and returns its answer.
ScriptedAnswer ScriptedServer::State::Record(const RecordedRequest& request) {
  const std::lock_guard lock(mutex);
  requests.push_back(request);
  const std::string path = PathOf(request);
  std::deque<ScriptedAnswer>& next = nextAnswers[path];
  if (!next.empty()) {
    ScriptedAnswer answer = std::move(next.front());
    next.pop_front();
    return answer;
  }
  const auto answer = answers.find(path);
  if (answer != answers.end()) return answer->second;
  return {.status = 404};
}

bool ScriptedServer::State::SendBody(SOCKET connection, std::string_view body, const ScriptedAnswer& answer) {
  const size_t end = std::min(body.size(), answer.closeAfter.value_or(body.size()));
  if (!answer.stallAfter) return Send(connection, body.substr(0, end));
  return Send(connection, body.substr(0, *answer.stallAfter)) && Stall() &&
         Send(connection, body.substr(*answer.stallAfter, end - *answer.stallAfter));
}

// False when the server stops.
bool ScriptedServer::State::Stall() {
  std::unique_lock lock(mutex);
  ++stalled;
  changed.notify_all();
  changed.wait(lock, [this, before = resumes] { return resumes != before || stopping.load(); });
  return !stopping;
}

ScriptedServer::ScriptedServer() {
  WSADATA data;
  WSAStartup(MAKEWORD(2, 2), &data);
  state_ = new State;
  state_->acceptor = std::thread([this] { state_->Accept(); });
}

ScriptedServer::~ScriptedServer() {
  {
    const std::lock_guard lock(state_->mutex);
    state_->stopping = true;
  }
  state_->changed.notify_all();
  const sockaddr_in address = LoopbackAddress(80);
  const Socket waker(socket(AF_INET, SOCK_STREAM, IPPROTO_TCP));
  // Ends the acceptor's wait.
  (void)connect(waker.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
  state_->acceptor.join();
  for (std::thread& connection : state_->connections) connection.join();
  delete state_;
  WSACleanup();
}

void ScriptedServer::Answer(const std::string& path, ScriptedAnswer answer) {
  const std::lock_guard lock(state_->mutex);
  state_->answers[path] = std::move(answer);
}

void ScriptedServer::AnswerNext(const std::string& path, ScriptedAnswer answer) {
  const std::lock_guard lock(state_->mutex);
  state_->nextAnswers[path].push_back(std::move(answer));
}

void ScriptedServer::Resume() {
  {
    const std::lock_guard lock(state_->mutex);
    state_->stalled = 0;
    ++state_->resumes;
  }
  state_->changed.notify_all();
}

bool ScriptedServer::WaitForStall() {
  std::unique_lock lock(state_->mutex);
  return state_->changed.wait_for(lock, std::chrono::seconds(10), [this] { return state_->stalled > 0; });
}

std::vector<RecordedRequest> ScriptedServer::Requests() const {
  const std::lock_guard lock(state_->mutex);
  return state_->requests;
}

std::vector<RecordedRequest> ScriptedServer::RequestsOf(const std::string& path) const {
  std::vector<RecordedRequest> matching;
  for (const RecordedRequest& request : Requests()) {
    if (PathOf(request) == path) matching.push_back(request);
  }
  return matching;
}
