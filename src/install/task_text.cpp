#include "install/task_text.h"

#include "system/text.h"

std::vector<std::string> SplitTaskText(std::string_view text) { return SplitKeepingEmpty(text, '|'); }
