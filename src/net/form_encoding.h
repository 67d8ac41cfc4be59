// URL encoding of form values. No Windows header: also built natively.
#pragma once

#include <string>
#include <string_view>

// Byte by byte: letters, digits and -_.!~*'() stay, a blank becomes "+", the rest "%" and two lower-case digits.
std::string FormEncode(std::string_view bytes);

// The text's UTF-8 bytes, encoded the same way.
std::string FormEncodeUtf8(std::wstring_view text);
