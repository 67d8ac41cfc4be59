#include <windows.h>
// wincrypt.h needs windows.h before it.
#include <wincrypt.h>

#include "md5.h"

struct Md5::State {
  HCRYPTPROV provider = 0;
  HCRYPTHASH hash = 0;
  bool ok = false;

  ~State() {
    if (hash) CryptDestroyHash(hash);
    if (provider) CryptReleaseContext(provider, 0);
  }
};

Md5::Md5() : state_(std::make_unique<State>()) {
  state_->ok = CryptAcquireContextW(&state_->provider, nullptr, nullptr, PROV_RSA_FULL, CRYPT_VERIFYCONTEXT) &&
               CryptCreateHash(state_->provider, CALG_MD5, 0, 0, &state_->hash);
}

Md5::~Md5() = default;

void Md5::Add(const void* bytes, size_t count) {
  state_->ok = state_->ok && CryptHashData(state_->hash, static_cast<const BYTE*>(bytes), static_cast<DWORD>(count), 0);
}

std::string Md5::Finish() {
  BYTE digest[16];
  DWORD size = sizeof digest;
  if (!state_->ok || !CryptGetHashParam(state_->hash, HP_HASHVAL, digest, &size, 0)) return "";
  return HexText(digest, size);
}
