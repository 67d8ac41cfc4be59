#include "system/shortcut.h"

#include <shlobj.h>

#include <algorithm>

#include "system/com.h"
#include "system/files.h"
#include "system/path_names.h"

HRESULT CreateShortcut(std::wstring target, std::wstring linkPath, const std::wstring& description) {
  const ComSession session;
  if (FAILED(session.Result())) return session.Result();
  ComPointer<IShellLinkW> link;
  HRESULT result = CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_ALL, IID_PPV_ARGS(link.Receive()));
  if (FAILED(result)) return result;

  // The shell takes "/" for a part of a name.
  for (std::wstring* const path : {&target, &linkPath}) std::replace(path->begin(), path->end(), L'/', L'\\');
  if (!linkPath.ends_with(L".lnk")) linkPath += L".lnk";
  CreateDirectories(ParentFolder(linkPath));
  result = link->SetPath(target.c_str());
  if (FAILED(result)) return result;
  link->SetWorkingDirectory(ParentFolder(target).c_str());
  if (!description.empty()) link->SetDescription(description.c_str());

  ComPointer<IPersistFile> file;
  result = link->QueryInterface(IID_PPV_ARGS(file.Receive()));
  return SUCCEEDED(result) ? file->Save(linkPath.c_str(), TRUE) : result;
}
