#include "check_site.h"

#include <ctime>
#include <map>
#include <set>

#include "address.h"
#include "ascii.h"
#include "http_probe.h"

namespace {

constexpr double kSecondsPerDay = 24 * 60 * 60;
constexpr double kSoonSeconds = 21 * kSecondsPerDay;

// A file that players will download.
struct Download {
  std::string url;
  uint64_t size = 0;
  std::string md5;      // empty: unknown
  std::string subject;  // the package's identifier; empty for the updater
  int line = 0;
};

// One run over a site.
struct SiteCheck {
  const ManifestFile& manifest;
  const SiteOptions& options;
  SiteFindings result;
  HttpProbe probe;
  std::set<std::string> seenSites;            // "https://host" whose certificate and other port were looked at
  std::map<std::string, size_t> silentHosts;  // without a connection, and how many addresses weren't asked for it

  Reporter Report(const char* check, std::string_view subject = "") { return {result.findings, check, subject}; }
};

// Sends the request unless there is no connection to the host. False when there is no answer, which is then told.
bool Ask(SiteCheck& check, const ProbeRequest& request, const Reporter& report, int line, ProbeAnswer& answer) {
  const std::string host = HostOf(request.url);
  if (const auto silent = check.silentHosts.find(host); silent != check.silentHosts.end()) {
    ++silent->second;
    return false;
  }
  answer = check.probe.Get(request, check.options.progress);
  if (answer.failure.empty()) return true;
  if (answer.unreachable) check.result.unreachable = true;
  if (!answer.connected) check.silentHosts.emplace(host, 0);
  report.Error(line, request.url + ": " + answer.failure);
  return false;
}

void TellWhatWasNotAsked(SiteCheck& check) {
  for (const auto& [host, count] : check.silentHosts) {
    if (count == 0) continue;
    check.Report("site-host")
        .Note(0, host + ": not asked any more, for " + Counted(count, "address") + "; it has no connection");
  }
}

bool IsRedirectToHttp(const ProbeRequest& request, const ProbeAnswer& answer) {
  return request.url.starts_with("https:") && answer.finalUrl.starts_with("http:");
}

void CheckRedirect(const ProbeRequest& request, const ProbeAnswer& answer, const Reporter& report, int line) {
  if (answer.finalUrl == request.url || answer.finalUrl.empty()) return;
  if (IsRedirectToHttp(request, answer)) {
    report.Error(line, request.url + " redirects from https to http, which the installer doesn't follow");
  } else {
    report.Note(line, request.url + " redirects to " + answer.finalUrl);
  }
}

void CheckCertificate(const ProbeAnswer& answer, const std::string& site, const Reporter& report, int line) {
  if (!answer.certificateFault.empty())
    report.Error(line, site + ": the certificate isn't trusted: " + answer.certificateFault);
  if (!answer.certificateEnds) return;
  const double left = std::difftime(*answer.certificateEnds, std::time(nullptr));
  const std::string days = std::to_string(static_cast<long>(left < 0 ? -left / kSecondsPerDay : left / kSecondsPerDay));
  if (left < 0) {
    report.Error(line, site + ": the certificate ended " + days + " days ago");
  } else if (left < kSoonSeconds) {
    report.Warning(line, site + ": the certificate ends in " + days + " days");
  }
}

// Where https fails, the installer asks once more with http.
void CheckOtherPort(SiteCheck& check, const std::string& httpsUrl, int line) {
  const Reporter report = check.Report("site-http");
  ProbeRequest request{.url = "http" + httpsUrl.substr(5), .followRedirects = false};
  const ProbeAnswer answer = check.probe.Get(request, {});
  if (!answer.failure.empty()) {
    report.Warning(line, request.url + ": " + answer.failure + "; the installer asks there when https fails");
  } else if (answer.status != 200) {
    report.Warning(line, request.url + " answers " + std::to_string(answer.status) +
                             "; the installer asks there when https fails");
  }
}

// What is true of a whole host is looked at once.
void CheckHostOnce(SiteCheck& check, const std::string& url, const ProbeAnswer& answer, int line) {
  const std::string site = SiteOf(url);
  if (!site.starts_with("https:") || !check.seenSites.insert(site).second) return;
  CheckCertificate(answer, site, check.Report("site-certificate"), line);
  CheckOtherPort(check, url, line);
}

// Whether the file is there at all.
bool CheckWhole(SiteCheck& check, const Download& download) {
  const Reporter report = check.Report("site-file", download.subject);
  const ProbeRequest request{.url = download.url, .body = check.options.download ? Body::Hash : Body::Drop};
  ProbeAnswer answer;
  if (!Ask(check, request, report, download.line, answer)) return false;
  CheckHostOnce(check, download.url, answer, download.line);
  CheckRedirect(request, answer, check.Report("site-redirect", download.subject), download.line);
  if (answer.status != 200) {
    report.Error(download.line, download.url + " answers " + std::to_string(answer.status) + " instead of 200");
    return false;
  }
  if (!answer.Header("content-encoding").empty()) {
    report.Error(download.line,
                 download.url + " arrives with the encoding " + Quoted(answer.Header("content-encoding")));
  }
  if (!answer.length) {
    report.Error(download.line, download.url + " doesn't announce its length");
  } else if (*answer.length != download.size) {
    report.Error(download.line, download.url + " has " + std::to_string(*answer.length) + " bytes, not " +
                                    std::to_string(download.size));
  }
  if (check.options.download && !download.md5.empty() && answer.md5 != download.md5) {
    report.Error(download.line, download.url + " has the md5 " + answer.md5 + ", not the manifest's");
  }
  return true;
}

void CheckRanges(SiteCheck& check, const Download& download) {
  const Reporter report = check.Report("site-range", download.subject);
  ProbeAnswer answer;
  if (download.size < 2) return;
  if (!Ask(check, {.url = download.url, .range = "1-"}, report, download.line, answer)) return;
  const std::string whole = std::to_string(download.size), last = std::to_string(download.size - 1);
  const std::string expected = "bytes 1-" + last + "/" + whole;
  if (answer.status != 206) {
    return report.Error(download.line, download.url + " answers " + std::to_string(answer.status) +
                                           " to a range, so a broken download begins anew every time");
  }
  if (answer.Header("content-range") != expected) {
    report.Error(download.line, download.url + " answers the range " + Quoted(answer.Header("content-range")) +
                                    " instead of " + Quoted(expected));
  }
  if (answer.length && *answer.length != download.size - 1) {
    report.Error(download.line,
                 download.url + " answers the range with " + std::to_string(*answer.length) + " bytes, not " + last);
  }
  if (!Ask(check, {.url = download.url, .range = whole + "-"}, report, download.line, answer)) return;
  if (answer.status != 416) {
    report.Warning(download.line, download.url + " answers " + std::to_string(answer.status) +
                                      " instead of 416 to a range behind its end");
  }
}

// Each address once, in the manifest's order.
std::vector<Download> DownloadsOf(const ManifestFile& manifest) {
  std::vector<Download> downloads;
  std::set<std::string> urls;
  const auto add = [&](Download download) {
    if (AddressFault(download.url).empty() && urls.insert(download.url).second)
      downloads.push_back(std::move(download));
  };
  const UpdaterInfo& updater = manifest.model.updater;
  for (const std::string& url : updater.urls) {
    add({url, updater.filesize, updater.md5, "", manifest.Section("updater")->GetLineNum()});
  }
  for (const PackageEntry& entry : manifest.packages) {
    const Package& package = entry.package;
    for (const auto& [key, url] : package.sources) {
      add({url, static_cast<uint64_t>(package.size), package.md5, package.filename, entry.LineOf("sources")});
    }
  }
  return downloads;
}

// What players would notice of a difference.
std::string Summary(const ManifestFile& manifest) {
  std::string summary = manifest.model.updater.md5;
  for (const PackageEntry& entry : manifest.packages) {
    summary += "\n" + entry.package.filename + " " + std::to_string(entry.package.size) + " " + entry.package.md5;
  }
  return summary;
}

bool IsBase(const std::string& site) {
  const size_t path = site.find('/', site.find("://") + 3);
  return path == std::string::npos || path + 1 == site.size();
}

bool LetsKeep(const std::string& cacheControl, std::string_view directive) {
  const size_t found = cacheControl.find(directive);
  return found != std::string::npos && cacheControl.substr(found + directive.size(), 1) != "0";
}

void CheckCaching(const ProbeAnswer& answer, const std::string& url, const Reporter& report) {
  const std::string control = LowerAscii(answer.Header("cache-control"));
  const bool kept = LetsKeep(control, "max-age=") || LetsKeep(control, "s-maxage=");
  if ((kept && control.find("no-store") == std::string::npos) || !answer.Header("age").empty()) {
    report.Warning(
        0, url + " may be kept by caches, so that players see an old manifest; let it be sent with \"no-store\"");
  }
}

void CheckManifestAddress(SiteCheck& check, const std::string& url) {
  const Reporter report = check.Report("site-manifest");
  const ProbeRequest request{.url = url, .body = Body::Keep};
  ProbeAnswer answer;
  if (!Ask(check, request, report, 0, answer)) return;
  CheckHostOnce(check, url, answer, 0);
  CheckRedirect(request, answer, check.Report("site-redirect"), 0);
  if (answer.status != 200)
    return report.Error(0, url + " answers " + std::to_string(answer.status) + " instead of 200");
  CheckCaching(answer, url, report);
  const auto served = ParseManifestText(url, std::move(answer.content));
  if (!served->root || served->packages.empty()) {
    report.Error(0, url + " answers with something that is no manifest");
  } else if (Summary(*served) != Summary(check.manifest)) {
    report.Note(0, url + " answers with a manifest that differs from this one");
  }
}

void CheckHelpPage(SiteCheck& check, const std::string& url) {
  const Reporter report = check.Report("site-page");
  ProbeAnswer answer;
  if (!Ask(check, {.url = url}, report, 0, answer) || answer.status == 200) return;
  report.Error(
      0, url + " answers " + std::to_string(answer.status) + "; it is where players are sent for the latest version");
}

}  // namespace

SiteFindings CheckSite(const ManifestFile& manifest, const SiteOptions& options) {
  SiteCheck check{manifest, options, {{manifest.path, {}}}, HttpProbe(options.caFile), {}, {}};
  if (const std::string weakness = AddressWeakness(options.site); !weakness.empty()) {
    check.Report("site-manifest").Warning(0, weakness);
  }
  if (IsBase(options.site)) {
    const std::string base = options.site.ends_with('/') ? options.site : options.site + "/";
    CheckManifestAddress(check, base + "play/files/repository.php?l=9");
    CheckHelpPage(check, base + "play/");
  } else {
    CheckManifestAddress(check, options.site);
  }
  const std::vector<Download> downloads = DownloadsOf(manifest);
  for (size_t i = 0; i < downloads.size(); ++i) {
    if (options.progress) options.progress(downloads[i].url, i, downloads.size());
    if (CheckWhole(check, downloads[i])) CheckRanges(check, downloads[i]);
  }
  TellWhatWasNotAsked(check);
  return std::move(check.result);
}
