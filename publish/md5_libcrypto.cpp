#include <openssl/evp.h>

#include "md5.h"

struct Md5::State {
  std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context{EVP_MD_CTX_new(), EVP_MD_CTX_free};
  bool ok = false;
};

Md5::Md5() : state_(std::make_unique<State>()) {
  state_->ok = state_->context && EVP_DigestInit_ex(state_->context.get(), EVP_md5(), nullptr) == 1;
}

Md5::~Md5() = default;

void Md5::Add(const void* bytes, size_t count) {
  state_->ok = state_->ok && EVP_DigestUpdate(state_->context.get(), bytes, count) == 1;
}

std::string Md5::Finish() {
  unsigned char digest[EVP_MAX_MD_SIZE];
  unsigned size = 0;
  if (!state_->ok || EVP_DigestFinal_ex(state_->context.get(), digest, &size) != 1) return "";
  return HexText(digest, size);
}
