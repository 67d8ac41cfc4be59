#include "net/telemetry_reports.h"

#include <gtest/gtest.h>

TEST(TelemetryReports, StatsHoldOnlyWhatIsThere) {
  const std::pair<StatsRecord, std::string> cases[] = {
      {{.source = "mirror \"2\""}, R"({"source":"mirror "2""})"},  // raw, as the endpoint expects it
      {{"main", 100, 99, 5'000'000'000, 12'000'000'000, 112},
       R"({"source":"main","downloaded":100,"extracted":99,"time":5000000000,"speed":12000000000,"exterr":112})"},
      {{.source = "", .speed = UINT64_MAX, .exterr = UINT32_MAX}, R"({"speed":-1,"exterr":4294967295})"},
  };
  for (const auto& [record, json] : cases) EXPECT_EQ(BuildStatsJson(record), json);
  EXPECT_EQ(BuildStatsField({{"a", {}}, {"\xFF", {.source = "", .exterr = 5}}, {"b c", {.source = "x"}}}),
            "%7b%22b+c%22%3a%7b%22source%22%3a%22x%22%7d%2c%22%ff%22%3a%7b%22exterr%22%3a5%7d%7d");
}

TEST(TelemetryReports, EndReports) {
  PhaseEnd end = {.uuid = "0f8f", .elapsedMs = 61500, .changedLimitKB = {}, .statsField = "{}", .errorRecords = ""};
  EXPECT_EQ(BuildDownloadReport(end), "u=0f8f&type=download_finish&time=61500&stats={}");
  EXPECT_EQ(BuildInstallReport(end, "a,b"), "u=0f8f&type=install_finish&packages=a%2cb&time=61500&stats={}");
  end.cancelled = end.deleteTmpFiles = true;
  end.closeReason = 4;
  end.changedLimitKB = 0;
  end.errorRecords = TargetMissingRecord("a");
  const std::string rest =
      "&endsession4&time=61500&limit=0&deltemp=1&stats={}\r\npackage=a&type=extract&error=path_not_found";
  EXPECT_EQ(BuildDownloadReport(end), "u=0f8f&type=download_cancel" + rest);
  EXPECT_EQ(BuildInstallReport(end, ""), "u=0f8f&type=install_cancel&packages=" + rest);
}

TEST(TelemetryReports, ErrorRecords) {
  const uint64_t large = 5'000'000'000;
  const std::pair<std::string, std::string> cases[] = {
      {TransferErrorRecord("gta sa", "eu & us", 206, 12002, large),
       "package=gta sa&source=eu & us&code=206&error=12002&size=5000000000"},
      {IncompleteExtractionRecord("gtasa", 112, 0, large, large + 1),
       "package=gtasa&type=extract&error=112&written=5000000000&total=5000000001"},
      {IncompleteExtractionRecord("gtasa", 0, -105, 0, 1),
       "package=gtasa&type=extract&error=0&zipError=-105&written=0&total=1"},
      {InstallerNotStartedRecord("mtasa.exe", 740), "package=mtasa.exe&type=process_install&error=740"},
      {VerifyFailedRecord("gtasa", 3, L"C:\\\u00E9 1"), "package=gtasa&type=verify&error=3&path=C%3a%5c%c3%a9+1"},
  };
  for (const auto& [record, text] : cases) EXPECT_EQ(record, "\r\n" + text);
}
