#include "net/telemetry_reports.h"

#include <gtest/gtest.h>

namespace {

constexpr char kUuid[] = "0f8fad5b-d9cb-469f-a165-70867728950e";
constexpr char kForm[] = "u=0f8fad5b-d9cb-469f-a165-70867728950e";

PhaseEnd PlainEnd() {
  PhaseEnd end;
  end.uuid = kUuid;
  end.elapsedMs = 61500;
  end.statsField = BuildStatsField({});
  return end;
}

PhaseEnd FullEnd() {
  PhaseEnd end = PlainEnd();
  end.cancelled = true;
  end.closeReason = 4;
  end.changedLimitKB = 0;
  end.deleteTmpFiles = true;
  end.statsField = BuildStatsField({{"gtasa", {.source = "", .downloaded = 100, .time = 5300}}});
  end.errorRecords = TargetMissingRecord("a") + TargetMissingRecord("b");
  return end;
}

}  // namespace

TEST(TelemetryReports, StatsHoldOnlyWhatIsThere) {
  struct Case {
    StatsRecord record;
    std::string json;
  };
  const Case cases[] = {
      {{}, "{}"},
      {{.source = "mirror \"2\""}, R"({"source":"mirror "2""})"},  // raw, as the endpoint expects it
      {{.source = "", .extracted = 7}, R"({"extracted":7})"},
      {{"main", 100, 99, 5'000'000'000, 12'000'000'000, 112},
       R"({"source":"main","downloaded":100,"extracted":99,"time":5000000000,"speed":12000000000,"exterr":112})"},
      {{.source = "", .speed = UINT64_MAX, .exterr = UINT32_MAX}, R"({"speed":-1,"exterr":4294967295})"},
  };
  for (const Case& c : cases) EXPECT_EQ(BuildStatsJson(c.record), c.json);
}

TEST(TelemetryReports, StatsObjectLeavesOutEmptyRecords) {
  EXPECT_EQ(BuildStatsField({}), "%7b%7d");
  EXPECT_EQ(BuildStatsField({{"gtasa", {}}, {"mtasa.exe", {}}}), "%7b%7d");
  EXPECT_EQ(BuildStatsField({{"gtasa", {.source = "", .downloaded = 100, .time = 5300}}}),
            "%7b%22gtasa%22%3a%7b%22downloaded%22%3a100%2c%22time%22%3a5300%7d%7d");
  const PackageStats several = {
      {"a", {}}, {"\xFF", {.source = "", .exterr = 5}}, {"b c", {.source = "x"}}, {"Z", {.source = "", .time = 1}}};
  EXPECT_EQ(BuildStatsField(several),
            "%7b%22Z%22%3a%7b%22time%22%3a1%7d%2c%22b+c%22%3a%7b%22source%22%3a%22x%22%7d%2c"
            "%22%ff%22%3a%7b%22exterr%22%3a5%7d%7d");
}

TEST(TelemetryReports, StartReport) {
  StartReport report = {.uuid = kUuid,
                        .packages = "gtasa,mtasa.exe",
                        .downloadTotal = 123456789,
                        .installPath = L"C:\\Games\\GTA San Andreas",
                        .selectedSource = "main",
                        .selectionFromUser = true};
  const std::string start = std::string(kForm) +
                            "&type=install_start&packages=gtasa%2cmtasa.exe&size=123456789"
                            "&path=C%3a%5cGames%5cGTA+San+Andreas&source=main";
  EXPECT_EQ(BuildStartReport(report), start + "&wae=1");
  report.limitKB = 512;
  report.reinstall = true;
  EXPECT_EQ(BuildStartReport(report), start + "&limit=512&reinstall=1&wae=1");
  report.selectionFromUser = false;
  EXPECT_EQ(BuildStartReport(report), start + "&limit=512&reinstall=1");

  const StartReport bare = {.uuid = kUuid,
                            .packages = "",
                            .downloadTotal = 5'000'000'000,
                            .installPath = L"D:\\\u0418\u0433\u0440\u044B",
                            .selectedSource = "raw & kept"};
  EXPECT_EQ(BuildStartReport(bare), std::string(kForm) +
                                        "&type=install_start&packages=&size=5000000000"
                                        "&path=D%3a%5c%d0%98%d0%b3%d1%80%d1%8b&source=raw & kept");
}

TEST(TelemetryReports, DownloadReport) {
  PhaseEnd end = PlainEnd();
  EXPECT_EQ(BuildDownloadReport(end), std::string(kForm) + "&type=download_finish&time=61500&stats=%7b%7d");
  end.cancelled = true;
  EXPECT_EQ(BuildDownloadReport(end), std::string(kForm) + "&type=download_cancel&time=61500&stats=%7b%7d");
  EXPECT_EQ(BuildDownloadReport(FullEnd()),
            std::string(kForm) +
                "&type=download_cancel&endsession4&time=61500&limit=0&deltemp=1"
                "&stats=%7b%22gtasa%22%3a%7b%22downloaded%22%3a100%2c%22time%22%3a5300%7d%7d"
                "\r\npackage=a&type=extract&error=path_not_found\r\npackage=b&type=extract&error=path_not_found");
}

TEST(TelemetryReports, InstallReport) {
  EXPECT_EQ(BuildInstallReport(PlainEnd(), "gtasa,mtasa.exe"),
            std::string(kForm) + "&type=install_finish&packages=gtasa%2cmtasa.exe&time=61500&stats=%7b%7d");
  EXPECT_EQ(BuildInstallReport(FullEnd(), ""),
            std::string(kForm) +
                "&type=install_cancel&packages=&endsession4&time=61500&limit=0&deltemp=1"
                "&stats=%7b%22gtasa%22%3a%7b%22downloaded%22%3a100%2c%22time%22%3a5300%7d%7d"
                "\r\npackage=a&type=extract&error=path_not_found\r\npackage=b&type=extract&error=path_not_found");
}

TEST(TelemetryReports, ErrorRecords) {
  const uint64_t large = 5'000'000'000;
  struct Case {
    std::string record, text;
  };
  const Case cases[] = {
      {TransferErrorRecord("gta sa", "eu & us", 206, 12002, large),
       "\r\npackage=gta sa&source=eu & us&code=206&error=12002&size=5000000000"},
      {NoDataRecord("gtasa", "eu", 404, 17), "\r\npackage=gtasa&source=eu&code=404&size=17"},
      {MismatchRecord("gtasa", "eu", 200, large, "", false),
       "\r\npackage=gtasa&source=eu&code=200&error=mismatch&size=5000000000&manifest=0"},
      {MismatchRecord("gtasa", "eu", 200, 9, "900150983cd24fb0d6963f7d28e17f72", true),
       "\r\npackage=gtasa&source=eu&code=200&error=mismatch&size=9&hash=900150983cd24fb0d6963f7d28e17f72&manifest=1"},
      {TargetMissingRecord("gtasa"), "\r\npackage=gtasa&type=extract&error=path_not_found"},
      {ArchiveUnreadableRecord("gtasa", 2), "\r\npackage=gtasa&type=extract&error=2"},
      {IncompleteExtractionRecord("gtasa", 112, 0, large, large + 1),
       "\r\npackage=gtasa&type=extract&error=112&written=5000000000&total=5000000001"},
      {IncompleteExtractionRecord("gtasa", 0, -105, 0, 1),
       "\r\npackage=gtasa&type=extract&error=0&zipError=-105&written=0&total=1"},
      {InstallerNotStartedRecord("mtasa.exe", 740), "\r\npackage=mtasa.exe&type=process_install&error=740"},
      {VerifyFailedRecord("gtasa", 3, L"C:\\Games\\\u00E9 1.exe"),
       "\r\npackage=gtasa&type=verify&error=3&path=C%3a%5cGames%5c%c3%a9+1.exe"},
  };
  for (const Case& c : cases) EXPECT_EQ(c.record, c.text);
}
