#include "net/telemetry_reports.h"

#include "system/text.h"

namespace {

constexpr std::string_view kUnchanged =
    "0123456789abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ"
    "-_.!~*'()";

// The endpoint reads these counts as signed.
std::string Signed(uint64_t count) { return std::to_string(static_cast<int64_t>(count)); }

// Appends a member to a JSON object's text, whose opening brace is there already.
void AppendMember(std::string& json, std::string_view key, const std::string& value) {
  if (json.size() > 1) json += ',';
  json += '"';
  json += key;
  json += "\":" + value;
}

void AppendNumber(std::string& json, std::string_view key, const std::string& value) {
  if (value != "0") AppendMember(json, key, value);
}

std::string FormStart(const std::string& uuid, std::string_view type) { return ("u=" + uuid + "&type=").append(type); }

// The rest of a body, with the error records that follow its line.
std::string PhaseEndFields(const PhaseEnd& end) {
  std::string fields;
  // The reason follows the name directly.
  if (end.closeReason != 0) fields += "&endsession" + std::to_string(end.closeReason);
  fields += "&time=" + std::to_string(end.elapsedMs);
  if (end.changedLimitKB) fields += "&limit=" + std::to_string(*end.changedLimitKB);
  if (end.deleteTmpFiles) fields += "&deltemp=1";
  return fields + "&stats=" + end.statsField + end.errorRecords;
}

std::string RecordStart(std::string_view package) { return std::string("\r\npackage=").append(package); }

std::string TransferRecordStart(std::string_view package, std::string_view source, uint32_t status) {
  return RecordStart(package).append("&source=").append(source) + "&code=" + std::to_string(status);
}

std::string PlacementRecord(std::string_view package, std::string_view type, uint32_t error) {
  return RecordStart(package).append("&type=").append(type) + "&error=" + std::to_string(error);
}

}  // namespace

std::string FormEncode(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string encoded;
  for (const char c : bytes) {
    if (kUnchanged.find(c) != std::string_view::npos) {
      encoded += c;
    } else if (c == ' ') {
      encoded += '+';
    } else {
      const auto byte = static_cast<unsigned char>(c);
      encoded += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
  }
  return encoded;
}

std::string FormEncodeUtf8(std::wstring_view text) { return FormEncode(WideToUtf8(text)); }

std::string BuildStatsJson(const StatsRecord& record) {
  std::string json = "{";
  if (!record.source.empty()) AppendMember(json, "source", '"' + record.source + '"');
  AppendNumber(json, "downloaded", std::to_string(record.downloaded));
  AppendNumber(json, "extracted", std::to_string(record.extracted));
  AppendNumber(json, "time", std::to_string(record.time));
  AppendNumber(json, "speed", Signed(record.speed));
  AppendNumber(json, "exterr", std::to_string(record.exterr));
  return json + '}';
}

std::string BuildStatsField(const PackageStats& stats) {
  std::string json = "{";
  for (const auto& [package, record] : stats) {
    const std::string value = BuildStatsJson(record);
    if (value != "{}") AppendMember(json, package, value);
  }
  return FormEncode(json + '}');
}

std::string BuildStartReport(const StartReport& report) {
  std::string body = FormStart(report.uuid, "install_start");
  body += "&packages=" + FormEncode(report.packages);
  body += "&size=" + Signed(report.downloadTotal);
  body += "&path=" + FormEncodeUtf8(report.installPath);
  body += "&source=" + report.selectedSource;
  if (report.limitKB != 0) body += "&limit=" + std::to_string(report.limitKB);
  if (report.reinstall) body += "&reinstall=1";
  if (report.selectionFromUser) body += "&wae=1";
  return body;
}

std::string BuildDownloadReport(const PhaseEnd& end) {
  return FormStart(end.uuid, end.cancelled ? "download_cancel" : "download_finish") + PhaseEndFields(end);
}

std::string BuildInstallReport(const PhaseEnd& end, const std::string& installedPackages) {
  return FormStart(end.uuid, end.cancelled ? "install_cancel" : "install_finish") +
         "&packages=" + FormEncode(installedPackages) + PhaseEndFields(end);
}

std::string TransferErrorRecord(std::string_view package, std::string_view source, uint32_t status, uint32_t error,
                                uint64_t size) {
  return TransferRecordStart(package, source, status) + "&error=" + std::to_string(error) +
         "&size=" + std::to_string(size);
}

std::string NoDataRecord(std::string_view package, std::string_view source, uint32_t status, uint64_t size) {
  return TransferRecordStart(package, source, status) + "&size=" + std::to_string(size);
}

std::string MismatchRecord(std::string_view package, std::string_view source, uint32_t status, uint64_t size,
                           std::string_view hash, bool manifestWasRefreshed) {
  std::string record = TransferRecordStart(package, source, status) + "&error=mismatch&size=" + std::to_string(size);
  if (!hash.empty()) record.append("&hash=").append(hash);
  return record + "&manifest=" + (manifestWasRefreshed ? '1' : '0');
}

std::string TargetMissingRecord(std::string_view package) {
  return RecordStart(package) + "&type=extract&error=path_not_found";
}

std::string ArchiveUnreadableRecord(std::string_view package, uint32_t error) {
  return PlacementRecord(package, "extract", error);
}

std::string IncompleteExtractionRecord(std::string_view package, uint32_t error, int32_t zipResult, uint64_t written,
                                       uint64_t total) {
  std::string record = PlacementRecord(package, "extract", error);
  if (zipResult != 0) record += "&zipError=" + std::to_string(zipResult);
  return record + "&written=" + Signed(written) + "&total=" + std::to_string(total);
}

std::string InstallerNotStartedRecord(std::string_view package, uint32_t error) {
  return PlacementRecord(package, "process_install", error);
}

std::string VerifyFailedRecord(std::string_view package, uint32_t error, std::wstring_view path) {
  return PlacementRecord(package, "verify", error) + "&path=" + FormEncodeUtf8(path);
}
