#include "net/error_text.h"

#include <gtest/gtest.h>
#include <windows.h>

#include "net/network_errors.h"

TEST(ErrorText, IsTheSystemsOwn) {
  SetLastError(ERROR_CRC);
  const std::wstring text = GetErrorText(ERROR_ACCESS_DENIED);
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CRC));
  ASSERT_GT(text.size(), 2u);
  EXPECT_EQ(text.substr(text.size() - 2), L"\r\n");
  EXPECT_NE(text, GetErrorText(ERROR_FILE_NOT_FOUND));
  // This text has a place for an insert.
  EXPECT_NE(GetErrorText(ERROR_BAD_EXE_FORMAT).find(L"%1"), std::wstring::npos);
}

TEST(ErrorText, IsEmptyForWinInetCodes) {
  SetLastError(ERROR_CRC);
  for (const uint32_t code : {kErrorTimeout, kErrorNameNotResolved, kErrorSecureChannel}) {
    EXPECT_EQ(GetErrorText(code), L"");
  }
  EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_CRC));
}
