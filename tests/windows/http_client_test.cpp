#include "net/http_client.h"

#include "net/http_result.h"
#include "support/install_scenario.h"
#include "support/wininet_faults.h"
#include "support/zip_builder.h"

namespace {

constexpr wchar_t kUrl[] = L"http://zendora.example/a";

// Every transfer begins with an error from before, which no result may show.
class Http : public InstallScenario {
 protected:
  Http() { server_.Answer("/a", Serving(content_)); }

  static std::string Summary(const HttpResult& result) {
    return std::to_string(result.statusCode) + ": " + std::to_string(result.received) + " of " +
           std::to_string(result.total) + ", error " + std::to_string(result.error);
  }
  std::string Download(uint64_t offset, const ScriptedAnswer& answer) {
    server_.AnswerNext("/a", answer);
    SetLastError(ERROR_CRC);
    return Summary(client_.DownloadToFile(kUrl, file_, offset, nullptr));
  }

  const std::string content_ = TestBytes(10000);
  HttpClient client_{app.userAgent};
};

}  // namespace

TEST_F(Http, DownloadGoesOnWhereItBrokeOff) {
  ScriptedAnswer broken = Serving(content_), unranged = Serving(content_);
  broken.closeAfter = 6000;
  unranged.honourRange = false;
  EXPECT_EQ(Download(0, broken), "200: 6000 of 10000, error 12030");
  EXPECT_EQ(Download(6000, Serving("no such range", 416)), "416: 0 of 0, error 0");
  EXPECT_EQ(ReadTestFile(file_), content_.substr(0, 6000));
  EXPECT_EQ(Download(6000, Serving(content_)), "206: 4000 of 4000, error 0");
  EXPECT_EQ(ReadTestFile(file_), content_);
  const RecordedRequest request = server_.Requests().back();
  EXPECT_EQ(request.headers.at("range"), "bytes=6000-");
  EXPECT_FALSE(request.headers.contains("accept-encoding")) << "the range would be one of the packed bytes";

  WriteTestFile(file_, std::string(12000, 'o'));
  EXPECT_EQ(Download(6000, unranged), "200: 10000 of 10000, error 0");
  EXPECT_EQ(ReadTestFile(file_), content_);
  EXPECT_EQ(Download(5'000'000'000, Serving("tail", 206)), "206: 4 of 4, error 0");
  EXPECT_EQ(server_.Requests().back().headers.at("range"), "bytes=5000000000-");
  EXPECT_EQ(FileSize(file_), 5'000'000'004u);
}

TEST_F(Http, FetchesAnUndecodableBodyAgainWithoutGzip) {
  const ReadFaults faults({0, 0, kErrorDecodingFailed});
  server_.Answer("/a", Serving("plain"));
  EXPECT_EQ(Download(0, Serving(content_)), "200: 8197 of 5, error 0");
  EXPECT_EQ(ReadTestFile(file_), "plain");
  EXPECT_TRUE(server_.Requests().at(0).headers.contains("accept-encoding"));
  EXPECT_FALSE(server_.Requests().at(1).headers.contains("accept-encoding"));
}
