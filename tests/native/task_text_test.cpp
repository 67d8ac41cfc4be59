#include "install/task_text.h"

#include <gtest/gtest.h>

TEST(TaskText, KeepsEveryPiece) {
  using Pieces = std::vector<std::string>;
  const std::pair<const char*, Pieces> cases[] = {
      {"", {}},
      {"setup.exe", {"setup.exe"}},
      {"setup.exe|", {"setup.exe", ""}},
      {"setup.exe|/S /D=C:\\x", {"setup.exe", "/S /D=C:\\x"}},
      {"a||b", {"a", "", "b"}},
      {"|", {"", ""}},
  };
  for (const auto& [text, pieces] : cases) EXPECT_EQ(SplitTaskText(text), pieces) << text;
}
