#include "http_probe.h"

#include <curl/curl.h>

#include <cctype>

#include "ascii.h"
#include "md5.h"

namespace {

constexpr long kConnectSeconds = 15, kSilenceSeconds = 30, kMostRedirects = 10;
constexpr size_t kLargestKept = 16 << 20;

// One request on its way.
struct Exchange {
  const ProbeRequest& request;
  const Progress& progress;
  ProbeAnswer answer = {};
  Md5 md5 = {};
};

std::string Trimmed(std::string_view text) {
  const size_t begin = text.find_first_not_of(" \t\r\n");
  return begin == std::string_view::npos
             ? ""
             : std::string(text.substr(begin, text.find_last_not_of(" \t\r\n") + 1 - begin));
}

size_t OnHeader(char* bytes, size_t, size_t count, void* context) {
  auto& answer = static_cast<Exchange*>(context)->answer;
  const std::string_view line(bytes, count);
  const size_t colon = line.find(':');
  // A redirect is followed by another answer, with headers of its own.
  if (line.starts_with("HTTP/")) answer.headers.clear();
  if (colon != std::string_view::npos)
    answer.headers[LowerAscii(line.substr(0, colon))] = Trimmed(line.substr(colon + 1));
  return count;
}

size_t OnBody(char* bytes, size_t, size_t count, void* context) {
  auto& exchange = *static_cast<Exchange*>(context);
  ProbeAnswer& answer = exchange.answer;
  if (exchange.request.body == Body::Drop) return 0;
  answer.received += count;
  if (exchange.request.body == Body::Hash) {
    exchange.md5.Add(bytes, count);
    if (exchange.progress) exchange.progress(exchange.request.url, answer.received, answer.length.value_or(0));
  } else {
    if (answer.content.size() + count > kLargestKept) return 0;
    answer.content.append(bytes, count);
  }
  return count;
}

bool IsUnreachable(CURLcode code) {
  return code == CURLE_COULDNT_RESOLVE_HOST || code == CURLE_COULDNT_CONNECT || code == CURLE_OPERATION_TIMEDOUT ||
         code == CURLE_GOT_NOTHING || code == CURLE_SSL_CONNECT_ERROR || code == CURLE_SEND_ERROR ||
         code == CURLE_RECV_ERROR;
}

bool IsWithoutConnection(CURLcode code, CURL* curl) {
  curl_off_t connectTime = 0;
  curl_easy_getinfo(curl, CURLINFO_CONNECT_TIME_T, &connectTime);
  return code == CURLE_COULDNT_RESOLVE_HOST || code == CURLE_COULDNT_CONNECT ||
         (code == CURLE_OPERATION_TIMEDOUT && connectTime == 0);
}

bool IsDistrust(CURLcode code) { return code == CURLE_PEER_FAILED_VERIFICATION || code == CURLE_SSL_CERTPROBLEM; }

std::optional<std::time_t> CertificateEnd(CURL* curl) {
  const curl_certinfo* chain = nullptr;
  if (curl_easy_getinfo(curl, CURLINFO_CERTINFO, &chain) != CURLE_OK || !chain || chain->num_of_certs == 0) return {};
  // Some TLS libraries write "Expire date:Nov 28 07:41:38 2026 GMT", others "Expire Date:2026-11-28 07:41:38 GMT",
  // whose dashes the reader of dates doesn't take.
  constexpr std::string_view kName = "expire date:";
  for (const curl_slist* field = chain->certinfo[0]; field; field = field->next) {
    if (!LowerAscii(field->data).starts_with(kName)) continue;
    std::string date = field->data + kName.size();
    std::erase(date, '-');
    const std::time_t end = curl_getdate(date.c_str(), nullptr);
    if (end != -1) return end;
  }
  return {};
}

void ReadFacts(CURL* curl, ProbeAnswer& answer) {
  curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &answer.status);
  const char* url = nullptr;
  curl_easy_getinfo(curl, CURLINFO_EFFECTIVE_URL, &url);
  answer.finalUrl = url ? url : "";
  curl_off_t length = -1;
  curl_easy_getinfo(curl, CURLINFO_CONTENT_LENGTH_DOWNLOAD_T, &length);
  if (length >= 0) answer.length = static_cast<uint64_t>(length);
  answer.certificateEnds = CertificateEnd(curl);
}

}  // namespace

struct HttpProbe::State {
  std::string caFile;
  std::unique_ptr<CURL, decltype(&curl_easy_cleanup)> curl{curl_easy_init(), curl_easy_cleanup};
  char error[CURL_ERROR_SIZE] = {};

  void SetUp(Exchange& exchange, bool verify);
  CURLcode Perform(Exchange& exchange, bool verify);
};

void HttpProbe::State::SetUp(Exchange& exchange, bool verify) {
  CURL* const handle = curl.get();
  const ProbeRequest& request = exchange.request;
  curl_easy_reset(handle);
  curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, error);
  curl_easy_setopt(handle, CURLOPT_URL, request.url.c_str());
  curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "http,https");
  curl_easy_setopt(handle, CURLOPT_USERAGENT, "Zendora Publish");
  curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
  curl_easy_setopt(handle, CURLOPT_FOLLOWLOCATION, request.followRedirects ? 1L : 0L);
  curl_easy_setopt(handle, CURLOPT_MAXREDIRS, kMostRedirects);
  curl_easy_setopt(handle, CURLOPT_CONNECTTIMEOUT, kConnectSeconds);
  curl_easy_setopt(handle, CURLOPT_LOW_SPEED_LIMIT, 1L);
  curl_easy_setopt(handle, CURLOPT_LOW_SPEED_TIME, kSilenceSeconds);
  curl_easy_setopt(handle, CURLOPT_CERTINFO, 1L);
  curl_easy_setopt(handle, CURLOPT_SSL_VERIFYPEER, verify ? 1L : 0L);
  curl_easy_setopt(handle, CURLOPT_SSL_VERIFYHOST, verify ? 2L : 0L);
  if (!caFile.empty()) curl_easy_setopt(handle, CURLOPT_CAINFO, caFile.c_str());
  if (!request.range.empty()) curl_easy_setopt(handle, CURLOPT_RANGE, request.range.c_str());
  curl_easy_setopt(handle, CURLOPT_HEADERFUNCTION, OnHeader);
  curl_easy_setopt(handle, CURLOPT_HEADERDATA, &exchange);
  curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, OnBody);
  curl_easy_setopt(handle, CURLOPT_WRITEDATA, &exchange);
}

CURLcode HttpProbe::State::Perform(Exchange& exchange, bool verify) {
  SetUp(exchange, verify);
  error[0] = '\0';
  const CURLcode code = curl_easy_perform(curl.get());
  // A dropped body looks like a failure to write it.
  const bool dropped = code == CURLE_WRITE_ERROR && exchange.request.body == Body::Drop;
  return dropped ? CURLE_OK : code;
}

HttpProbe::HttpProbe(std::string caFile) : state_(std::make_unique<State>()) { state_->caFile = std::move(caFile); }

HttpProbe::~HttpProbe() = default;

ProbeAnswer HttpProbe::Get(const ProbeRequest& request, const Progress& progress) {
  Exchange exchange{request, progress};
  ProbeAnswer& answer = exchange.answer;
  const auto reason = [&](CURLcode code) {
    return std::string(state_->error[0] ? state_->error : curl_easy_strerror(code));
  };
  CURLcode code = state_->Perform(exchange, true);
  if (IsDistrust(code)) {
    answer.certificateFault = reason(code);
    code = state_->Perform(exchange, false);
  }
  if (code != CURLE_OK) answer.failure = reason(code);
  answer.unreachable = IsUnreachable(code);
  answer.connected = !IsWithoutConnection(code, state_->curl.get());
  ReadFacts(state_->curl.get(), answer);
  if (request.body == Body::Hash) answer.md5 = exchange.md5.Finish();
  return std::move(exchange.answer);
}
