#include "net/http_post_client.h"

#include <gtest/gtest.h>

#include <map>

#include "net/network_errors.h"
#include "support/exchanged.h"
#include "support/scripted_server.h"
#include "support/wininet_faults.h"

namespace {

DWORD seenOpenFlags;
decltype(WinInetApi::HttpOpenRequest) realOpenRequest;
HINTERNET WINAPI WatchOpenRequest(HINTERNET connection, LPCWSTR verb, LPCWSTR object, LPCWSTR version, LPCWSTR referrer,
                                  LPCWSTR* types, DWORD flags, DWORD_PTR context) {
  seenOpenFlags = flags;
  return realOpenRequest(connection, verb, object, version, referrer, types, flags, context);
}

std::map<DWORD, DWORD> seenOptions;
decltype(WinInetApi::InternetSetOption) realSetOption;
BOOL WINAPI WatchSetOption(HINTERNET handle, DWORD option, LPVOID value, DWORD size) {
  EXPECT_EQ(size, sizeof(DWORD));
  seenOptions[option] = *static_cast<DWORD*>(value);
  return realSetOption(handle, option, value, size);
}

}  // namespace

TEST(HttpPostClient, PostsTheBodyAsItIs) {
  const std::string body = "u=1&type=x&path=C%3a\r\npackage=a&source=\xFF" + std::string(20000, 'r');
  struct Case {
    std::wstring url;
    std::string target;
    DWORD flags;
  };
  const Case cases[] = {
      {L"http://zendora.example/play/t.php", "/play/t.php", 0x84003000},
      {L"http://zendora.example:81/t?a=1&b", "/t?a=1&b", 0x84003000},
      {L"https://zendora.example/play/t.php", "/play/t.php", 0x84803000},
  };
  const Exchanged open(WinInet().HttpOpenRequest, &WatchOpenRequest);
  realOpenRequest = open.Original();
  for (const Case& c : cases) {
    ScriptedServer server;  // its answer, a refusal, doesn't matter
    HttpPostClient client;
    client.SetUrl(c.url);
    client.PostForm(body);
    client.PostForm("second");
    ASSERT_EQ(server.Requests().size(), 2u);
    const RecordedRequest first = server.Requests()[0];
    EXPECT_EQ(first.method, "POST");
    EXPECT_EQ(first.target, c.target);
    EXPECT_EQ(first.headers.at("content-type"), "application/x-www-form-urlencoded");
    EXPECT_EQ(first.headers.at("user-agent"), "Zendora tests");
    EXPECT_TRUE(first.body == body);
    EXPECT_EQ(server.Requests()[1].body, "second");
    EXPECT_EQ(seenOpenFlags, c.flags);
  }
}

TEST(HttpPostClient, SendsOnceMoreAfterAnUnknownAuthorityOnly) {
  ScriptedServer server;
  HttpPostClient client;
  client.SetUrl(L"http://zendora.example/t");
  struct Case {
    std::deque<DWORD> faults;
    int sends;
    size_t arrived;
  };
  const Case cases[] = {
      {{ERROR_INTERNET_INVALID_CA}, 2, 1},
      {{ERROR_INTERNET_INVALID_CA, ERROR_INTERNET_INVALID_CA}, 2, 0},
      {{kErrorTimeout}, 1, 0},
  };
  size_t arrived = 0;
  for (const Case& c : cases) {
    const SendFaults faults(c.faults);
    client.PostForm("form");
    EXPECT_EQ(faults.Sends(), c.sends);
    arrived += c.arrived;
    ASSERT_EQ(server.Requests().size(), arrived);
  }
  EXPECT_EQ(server.Requests()[0].body, "form");
  EXPECT_EQ(server.Requests()[0].headers.at("content-type"), "application/x-www-form-urlencoded");
}

TEST(HttpPostClient, WaitsThreeSecondsPerPhase) {
  const Exchanged option(WinInet().InternetSetOption, &WatchSetOption);
  realSetOption = option.Original();
  const std::map<DWORD, DWORD> expected = {{INTERNET_OPTION_CONNECT_TIMEOUT, 3000},
                                           {INTERNET_OPTION_RECEIVE_TIMEOUT, 3000},
                                           {INTERNET_OPTION_SEND_TIMEOUT, 3000},
                                           {INTERNET_OPTION_DATA_SEND_TIMEOUT, 3000}};
  seenOptions.clear();
  HttpPostClient client;
  EXPECT_EQ(seenOptions, expected);
}
