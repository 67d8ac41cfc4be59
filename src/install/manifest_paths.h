// The paths that a package names, as text: which of them may be used, and where they lead. No Windows header: also
// built natively.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "manifest/manifest_model.h"

// Whether a path, joined to the folder that it is relative to, stays in it. "." components, doubled separators and one
// at the beginning don't count; the folder itself is a path in it.
bool StaysInside(std::wstring_view path);

// Where such a path leads below `target`.
std::wstring PathInTarget(const std::wstring& target, std::wstring_view path);

// The first path of the package that would lead out of the folder it belongs to; nothing when all may be used. Nothing
// of a package may be placed, written to the registry or started before this has been asked. Its `filename` is looked
// at too, as a plain file name.
std::optional<std::wstring> FindUnsafePath(const Package& package);
