// Bytes of texts, without a code page.
#pragma once

#include <string>
#include <string_view>

// Letters A to Z in lower case, everything else as it is.
std::string LowerAscii(std::string_view text);

bool IsAscii(std::string_view text);

// Whether the text is not empty and all decimal digits, or all lower-case hexadecimal digits.
bool IsDecimal(std::string_view text);
bool IsLowerHex(std::string_view text);

// "&", "<", ">" and quotation marks as XML writes them in an attribute or a text.
std::string XmlEscaped(std::string_view text);
