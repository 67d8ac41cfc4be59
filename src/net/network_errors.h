// WinINet error codes that the program reacts to.
#pragma once

#include <cstdint>

inline constexpr uint32_t kErrorTimeout = 12002;
inline constexpr uint32_t kErrorNameNotResolved = 12007;
inline constexpr uint32_t kErrorCannotConnect = 12029;
inline constexpr uint32_t kErrorConnectionAborted = 12030;
inline constexpr uint32_t kErrorConnectionReset = 12031;
inline constexpr uint32_t kErrorSecureChannel = 12157;
inline constexpr uint32_t kErrorDecodingFailed = 12175;

// Errors that a brief outage causes: the same request may succeed a moment later.
constexpr bool IsRetryableNetworkError(uint32_t code) {
  return code == kErrorTimeout || code == kErrorNameNotResolved || code == kErrorCannotConnect ||
         code == kErrorConnectionAborted || code == kErrorConnectionReset;
}
