// Task texts of the manifest: pieces separated by "|". No Windows header: also built natively.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// Every piece, empty ones included, also the one after a final "|". An empty text has no pieces.
std::vector<std::string> SplitTaskText(std::string_view text);
