#include "manifest/manifest_retrieval.h"

#include "core/context.h"
#include "core/site.h"
#include "manifest/manifest_store.h"
#include "net/http_client.h"
#include "system/files.h"
#include "system/text.h"

namespace {

constexpr int64_t kMaxCacheAgeSeconds = 3600;

}  // namespace

std::wstring BuildManifestUrl() {
  std::wstring url = RepositoryAddress() + L"?l=" + std::to_wstring(app.uiLanguage);
  if (!app.uuid.empty()) url += L"&u=" + WidenBytes(app.uuid);
  if (app.darkMode) url += L"&dt=1";
  if (app.startupWaitMs != 0) url += L"&sd=" + std::to_wstring(app.startupWaitMs);
  return url;
}

ManifestFetch FetchManifest() {
  manifestBuffer.clear();
  const HttpResult result =
      HttpClient(app.userAgent, app.cancelRequested.Token()).GetToStream(BuildManifestUrl(), manifestBuffer);
  // A body that couldn't be decoded is there, too, when the second answer is refused.
  return {result.received != 0 && IsAccepted(result.statusCode) && !manifestBuffer.empty(), result};
}

bool IsManifestCacheFresh() {
  if (!FileExistsNonEmpty(app.manifestPath)) return false;
  const int64_t age = FileAgeSeconds(app.manifestPath).value_or(0);
  return age >= 0 && age <= kMaxCacheAgeSeconds;  // a file of a time to come would stay fresh for ever
}
