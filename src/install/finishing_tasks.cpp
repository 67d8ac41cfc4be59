#include "install/finishing_tasks.h"

#include "app/page_controls.h"
#include "system/text.h"

void RunAddons(const Package& package, const std::string&) {
  for (const std::string& name : package.addons) AppendLog(L"Processing installation addon: " + WidenBytes(name));
}

void CreateDesktopLink(const Package&, const std::wstring&) {}

void RunExecuteTask(const Package&, const std::wstring&) {}
