// Paths as text, without a look at the disk. No Windows header: also built natively.
#pragma once

#include <string>
#include <string_view>

// Longest path, in wide characters without the terminator, that the program keeps or builds (MAX_PATH - 1).
constexpr size_t kMaxPathLength = 259;

// `folder` + "\" + `name`, without the "\" when `folder` already ends with "\" or "/".
std::wstring JoinPath(std::wstring_view folder, std::wstring_view name);

// "\" and "/" are separators.
bool IsSeparator(wchar_t c);

// The path without "." components and doubled separators; a separator at its beginning or end stays.
std::wstring NormalizePath(std::wstring_view path);

// The text after the last "\" or "/"; the whole text when there is none.
std::wstring LastComponent(std::wstring_view path);

// The text before the last "\" or "/"; empty when there is none. A drive keeps its separator ("C:\").
std::wstring ParentFolder(std::wstring_view path);

// Whether a path may be joined to a folder as text without leading out of it (a link on the disk is not looked at): a
// relative path of one or more components ("\" or "/" between them), none of them empty, ".", "..", a reserved device
// name (with or without extension), ending in a dot or blank, or holding a colon, a control character or one of
// <>"|?* . A separator at the end is allowed (a folder of an archive).
bool IsSafeRelativePath(std::wstring_view path);

// The same for one component: a file name without any separator.
bool IsSafeFileName(std::wstring_view name);
