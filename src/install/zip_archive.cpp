#include "install/zip_archive.h"

#include <unzip.h>

#include <array>

#ifdef _WIN32
#include <windows.h>

#include <iowin32.h>  // after unzip.h, whose types it uses
#else
#include <cerrno>

#include "system/text.h"
#endif

static_assert(kZipSystemError == UNZ_ERRNO && kZipEndOfEntries == UNZ_END_OF_LIST_OF_FILE &&
              kZipUnreadable == UNZ_BADZIPFILE && kZipWrongContent == UNZ_CRCERROR);

namespace {

// What differs between the systems: how the library's files are opened, and where a failure leaves its error.
#ifdef _WIN32
constexpr uint32_t kErrorNotAnArchive = ERROR_INVALID_DATA;
uint32_t SystemError() { return GetLastError(); }
void ClearSystemError() { SetLastError(ERROR_SUCCESS); }
zlib_filefunc64_def SystemFileFunctions() {
  zlib_filefunc64_def functions;
  fill_win32_filefunc64W(&functions);
  return functions;
}
unzFile OpenArchive(const std::wstring& path, zlib_filefunc64_def& functions) {
  return unzOpen2_64(path.c_str(), &functions);
}
#else
constexpr uint32_t kErrorNotAnArchive = EILSEQ;
uint32_t SystemError() { return static_cast<uint32_t>(errno); }
void ClearSystemError() { errno = 0; }
zlib_filefunc64_def SystemFileFunctions() {
  zlib_filefunc64_def functions;
  fill_fopen64_filefunc(&functions);
  return functions;
}
unzFile OpenArchive(const std::wstring& path, zlib_filefunc64_def& functions) {
  return unzOpen2_64(WideToUtf8(path).c_str(), &functions);
}
#endif

// General purpose flags of an entry.
constexpr uLong kFlagEncrypted = 1 << 0;
constexpr uLong kFlagSizesFollow = 1 << 3;
constexpr uLong kFlagStrongEncryption = 1 << 6;

constexpr uLong kMethodStored = 0;

ZipEncryption EncryptionOf(const unz_file_info64& info) {
  if (info.flag & kFlagStrongEncryption) return ZipEncryption::Strong;
  return info.flag & kFlagEncrypted ? ZipEncryption::Traditional : ZipEncryption::None;
}

// What precedes the data of an encrypted entry: random bytes, and one by which a password can be checked.
constexpr size_t kEncryptionHeaderSize = 12;
using EncryptionHeader = std::array<unsigned char, kEncryptionHeaderSize>;

// The traditional cipher of the zip format.
class ZipCipher {
 public:
  explicit ZipCipher(const std::string& password) {
    for (const char c : password) Advance(static_cast<unsigned char>(c));
  }

  void Decrypt(unsigned char* bytes, size_t count) {
    for (size_t i = 0; i < count; ++i) {
      const uint32_t seed = (keys_[2] & 0xFFFF) | 2;
      bytes[i] ^= static_cast<unsigned char>(seed * (seed ^ 1) >> 8);
      Advance(bytes[i]);
    }
  }

 private:
  void Advance(unsigned char plain) {
    keys_[0] = Crc(keys_[0], plain);
    keys_[1] = (keys_[1] + (keys_[0] & 0xFF)) * 134775813 + 1;
    keys_[2] = Crc(keys_[2], static_cast<unsigned char>(keys_[1] >> 24));
  }
  uint32_t Crc(uint32_t crc, unsigned char byte) const { return crcTable_[(crc ^ byte) & 0xFF] ^ crc >> 8; }

  const z_crc_t* crcTable_ = get_crc_table();
  uint32_t keys_[3] = {0x12345678, 0x23456789, 0x34567890};
};

// The byte that a right password makes of the header's last one.
unsigned char CheckByte(const unz_file_info64& info) {
  const uLong source = info.flag & kFlagSizesFollow ? (info.dosDate & 0xFFFF) << 16 : info.crc;
  return static_cast<unsigned char>(source >> 24);
}

}  // namespace

// The library is compiled without decryption. It gets it through its file functions: while an encrypted entry is
// read they skip the encryption header and decrypt what passes. The library then asks for as many bytes behind the
// entry as the header has; they are there, because the archive's directory follows, and it makes no use of them.
struct ZipArchive::State {
  unzFile archive = nullptr;
  zlib_filefunc64_def system = {};  // the file functions below ours
  ZipCipher cipher{""};
  bool encrypted = false;  // the open entry
  bool decrypting = false;
  uint32_t openError = 0;

  static voidpf ZCALLBACK OpenFile(voidpf opaque, const void* path, int mode) {
    State& state = *static_cast<State*>(opaque);
    const voidpf stream = state.system.zopen64_file(nullptr, path, mode);
    state.openError = stream ? 0 : SystemError();
    return stream;
  }
  static uLong ZCALLBACK Read(voidpf opaque, voidpf stream, void* buffer, uLong size) {
    State& state = *static_cast<State*>(opaque);
    ClearSystemError();  // a file that is too short is no system error, so none may be left from before
    const uLong count = state.system.zread_file(nullptr, stream, buffer, size);
    if (state.decrypting) state.cipher.Decrypt(static_cast<unsigned char*>(buffer), count);
    return count;
  }
  static long ZCALLBACK Seek(voidpf opaque, voidpf stream, ZPOS64_T offset, int origin) {
    const State& state = *static_cast<State*>(opaque);
    return state.system.zseek64_file(nullptr, stream, offset + (state.decrypting ? kEncryptionHeaderSize : 0), origin);
  }

  // Sets up the cipher for the current entry's data.
  int32_t StartDecryption(const unz_file_info64& info, const std::string& password);
};

int32_t ZipArchive::State::StartDecryption(const unz_file_info64& info, const std::string& password) {
  if (password.empty()) return kZipWrongPassword;
  if (info.compressed_size < kEncryptionHeaderSize) return kZipUnreadable;
  if (const int result = unzOpenCurrentFile2(archive, nullptr, nullptr, 1)) return result;
  EncryptionHeader header;
  const int count = unzReadCurrentFile(archive, header.data(), kEncryptionHeaderSize);
  unzCloseCurrentFile(archive);
  if (count != static_cast<int>(kEncryptionHeaderSize)) return count < 0 ? count : kZipUnreadable;

  cipher = ZipCipher(password);
  cipher.Decrypt(header.data(), header.size());
  return header.back() == CheckByte(info) ? 0 : kZipWrongPassword;
}

ZipArchive::ZipArchive() : state_(std::make_unique<State>()) {}

ZipArchive::~ZipArchive() {
  if (state_->archive) unzClose(state_->archive);
}

uint32_t ZipArchive::Open(const std::wstring& path) {
  state_->system = SystemFileFunctions();
  zlib_filefunc64_def functions = state_->system;
  functions.zopen64_file = State::OpenFile;
  functions.zread_file = State::Read;
  functions.zseek64_file = State::Seek;
  functions.opaque = state_.get();
  state_->archive = OpenArchive(path, functions);
  if (state_->archive) return 0;
  return state_->openError != 0 ? state_->openError : kErrorNotAnArchive;
}

int32_t ZipArchive::GoToFirstEntry() {
  unz_global_info64 info = {};
  if (unzGetGlobalInfo64(state_->archive, &info) == UNZ_OK && info.number_entry == 0) return kZipEndOfEntries;
  return unzGoToFirstFile(state_->archive);
}

int32_t ZipArchive::GoToNextEntry() { return unzGoToNextFile(state_->archive); }

int32_t ZipArchive::OpenEntry(const std::string& password) {
  unz_file_info64 info;
  if (const int result = unzGetCurrentFileInfo64(state_->archive, &info, nullptr, 0, nullptr, 0, nullptr, 0)) {
    return result;
  }
  // Some methods the library would open all the same, and give out the packed bytes.
  if (info.compression_method != kMethodStored && info.compression_method != Z_DEFLATED) return kZipUnreadable;
  const ZipEncryption encryption = EncryptionOf(info);
  if (encryption == ZipEncryption::Strong) return kZipUnreadable;
  state_->encrypted = encryption == ZipEncryption::Traditional;
  if (state_->encrypted) {
    if (const int32_t result = state_->StartDecryption(info, password)) return result;
  }
  return unzOpenCurrentFile(state_->archive);
}

int32_t ZipArchive::GetEntryInfo(ZipEntry& entry) {
  unz_file_info64 info;
  if (const int result = unzGetCurrentFileInfo64(state_->archive, &info, nullptr, 0, nullptr, 0, nullptr, 0)) {
    return result;
  }
  entry.size = info.uncompressed_size;
  entry.method = static_cast<uint32_t>(info.compression_method);
  entry.encryption = EncryptionOf(info);
  entry.name.resize(info.size_filename);
  return unzGetCurrentFileInfo64(state_->archive, nullptr, entry.name.data(), info.size_filename, nullptr, 0, nullptr,
                                 0);
}

int32_t ZipArchive::ReadEntry(void* buffer, uint32_t size) {
  state_->decrypting = state_->encrypted;
  const int32_t count = unzReadCurrentFile(state_->archive, buffer, size);
  state_->decrypting = false;
  return count;
}

int32_t ZipArchive::CloseEntry() { return unzCloseCurrentFile(state_->archive); }
