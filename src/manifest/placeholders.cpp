#include "manifest/placeholders.h"

#include "system/text.h"

std::wstring ResolveFolderPlaceholder(const std::string&) {
  return {};
}

std::string ExpandInstallPath(std::string text, const std::string& targetFolder) {
  ReplaceFirst(text, "{install_path}", targetFolder);
  return text;
}
