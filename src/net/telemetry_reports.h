// The bodies of the reports that a run sends. No Windows header: also built natively.
//
// A body is one line of key=value pairs, followed by the run's error records, each on a line of its own. Raw texts
// (identifiers, source keys) travel without encoding.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

// URL encoding of form values. Byte by byte: letters, digits and -_.!~*'() stay, a blank becomes "+", the rest "%" and
// two lower-case digits.
std::string FormEncode(std::string_view bytes);

// The text's UTF-8 bytes, encoded the same way.
std::string FormEncodeUtf8(std::wstring_view text);

// Statistics of one package of a run.
struct StatsRecord {
  std::string source;       // key of the last source tried that is not the selected one
  uint32_t downloaded = 0;  // percent of the package's size
  uint32_t extracted = 0;   // percent of its size after installation
  uint64_t time = 0;        // milliseconds of the last download attempt
  uint64_t speed = 0;       // bytes per second when it ended
  uint32_t exterr = 0;      // last system error while files were created or written
};

// By package identifier, in byte order.
using PackageStats = std::map<std::string, StatsRecord>;

// The record's JSON object with only the members that hold something; "{}" for an empty record.
std::string BuildStatsJson(const StatsRecord& record);

// The JSON object of all non-empty records, form-encoded.
std::string BuildStatsField(const PackageStats& stats);

struct StartReport {
  std::string uuid;
  std::string packages;  // identifiers joined by ","
  uint64_t downloadTotal = 0;
  std::wstring installPath;
  std::string selectedSource;
  uint32_t limitKB = 0;
  bool reinstall = false;
  bool selectionFromUser = false;
};
std::string BuildStartReport(const StartReport& report);

// What the reports at the end of a phase have in common.
struct PhaseEnd {
  std::string uuid;
  bool cancelled = false;
  int closeReason = 0;
  uint64_t elapsedMs = 0;                  // since the start of the run
  std::optional<uint32_t> changedLimitKB;  // the current limit, when it is not the one of the start
  bool deleteTmpFiles = false;
  std::string statsField;    // of BuildStatsField
  std::string errorRecords;  // of the phase
};
std::string BuildDownloadReport(const PhaseEnd& end);
std::string BuildInstallReport(const PhaseEnd& end, const std::string& installedPackages);

// Error records. `package` is an identifier, `source` a source key, `status` an HTTP status, `size` a file size.
std::string TransferErrorRecord(std::string_view package, std::string_view source, uint32_t status, uint32_t error,
                                uint64_t size);
std::string NoDataRecord(std::string_view package, std::string_view source, uint32_t status, uint64_t size);
std::string MismatchRecord(std::string_view package, std::string_view source, uint32_t status, uint64_t size,
                           std::string_view hash, bool manifestWasRefreshed);
std::string TargetMissingRecord(std::string_view package);
std::string ArchiveUnreadableRecord(std::string_view package, uint32_t error);
std::string IncompleteExtractionRecord(std::string_view package, uint32_t error, int32_t zipResult, uint64_t written,
                                       uint64_t total);
std::string InstallerNotStartedRecord(std::string_view package, uint32_t error);
std::string VerifyFailedRecord(std::string_view package, uint32_t error, std::wstring_view path);
