#include "net/wininet_api.h"

#include "system/modules.h"

namespace {

template <typename Result, typename... Arguments>
Result WINAPI FailAsMissing(Arguments...) {
  SetLastError(ERROR_MOD_NOT_FOUND);
  return Result{};
}

template <typename Result, typename... Arguments>
void LookUp(HMODULE module, const char* name, Result(WINAPI*& entry)(Arguments...)) {
  const FARPROC address = module ? GetProcAddress(module, name) : nullptr;
  using Entry = Result(WINAPI*)(Arguments...);
  entry = address ? reinterpret_cast<Entry>(reinterpret_cast<void*>(address)) : &FailAsMissing<Result, Arguments...>;
}

WinInetApi Load() {
  const HMODULE module = LoadSystemModule(L"wininet.dll");
  WinInetApi api;
  LookUp(module, "InternetOpenW", api.InternetOpen);
  LookUp(module, "InternetConnectW", api.InternetConnect);
  LookUp(module, "InternetCloseHandle", api.InternetCloseHandle);
  LookUp(module, "InternetCrackUrlW", api.InternetCrackUrl);
  LookUp(module, "InternetReadFile", api.InternetReadFile);
  LookUp(module, "InternetQueryOptionW", api.InternetQueryOption);
  LookUp(module, "InternetSetOptionW", api.InternetSetOption);
  LookUp(module, "InternetGetLastResponseInfoW", api.InternetGetLastResponseInfo);
  LookUp(module, "HttpOpenRequestW", api.HttpOpenRequest);
  LookUp(module, "HttpAddRequestHeadersW", api.HttpAddRequestHeaders);
  LookUp(module, "HttpSendRequestW", api.HttpSendRequest);
  LookUp(module, "HttpQueryInfoW", api.HttpQueryInfo);
  return api;
}

}  // namespace

WinInetApi& WinInet() {
  static WinInetApi& api = *new WinInetApi(Load());
  return api;
}
