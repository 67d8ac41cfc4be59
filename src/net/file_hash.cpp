#include "net/file_hash.h"

#include <windows.h>

#include <wincrypt.h>

#include "system/handles.h"
#include "system/text.h"

namespace {

constexpr DWORD kDigestSize = 16;

struct CryptContextTraits {
  using Type = HCRYPTPROV;
  static Type Invalid() { return 0; }
  static void Close(Type handle) { CryptReleaseContext(handle, 0); }
};

struct CryptHashTraits {
  using Type = HCRYPTHASH;
  static Type Invalid() { return 0; }
  static void Close(Type handle) { CryptDestroyHash(handle); }
};

using CryptContext = UniqueHandle<CryptContextTraits>;
using CryptHash = UniqueHandle<CryptHashTraits>;

uint64_t SizeOf(HANDLE file) {
  LARGE_INTEGER size;
  return GetFileSizeEx(file, &size) ? static_cast<uint64_t>(size.QuadPart) : 0;
}

// False when the file can't be read to its end or the callback cancelled.
bool HashContent(HANDLE file, HCRYPTHASH hash, HashProgress& progress, HashProgressCallback callback) {
  const uint64_t size = SizeOf(file);
  BYTE chunk[4096];
  for (;;) {
    DWORD count = 0;
    if (!ReadFile(file, chunk, sizeof chunk, &count, nullptr)) return false;
    if (count == 0) return true;
    if (!CryptHashData(hash, chunk, count, 0)) return false;
    if (!callback) continue;
    progress.processed += count;
    progress.percent = PercentOf(progress.processed, size);
    callback(&progress);
    if (progress.cancel) return false;
  }
}

std::string DigestText(HCRYPTHASH hash) {
  BYTE digest[kDigestSize];
  DWORD size = sizeof digest;
  if (!CryptGetHashParam(hash, HP_HASHVAL, digest, &size, 0)) return "";
  std::string text;
  for (const BYTE byte : digest) {
    text += "0123456789abcdef"[byte >> 4];
    text += "0123456789abcdef"[byte & 15];
  }
  return text;
}

}  // namespace

std::string ComputeFileMd5(const std::wstring& path, HashProgressCallback callback) {
  HashProgress progress;
  if (callback) callback(&progress);
  if (progress.cancel) return "";
  const FileHandle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
  if (!file) return "";
  CryptContext context;
  if (!CryptAcquireContextW(context.Receive(), nullptr, nullptr, PROV_RSA_FULL, CRYPT_VERIFYCONTEXT)) return "";
  CryptHash hash;
  if (!CryptCreateHash(context.Get(), CALG_MD5, 0, 0, hash.Receive())) return "";
  return HashContent(file.Get(), hash.Get(), progress, callback) ? DigestText(hash.Get()) : "";
}
