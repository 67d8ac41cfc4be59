#include <gtest/gtest.h>
#include <windows.h>

#include <memory>

#include "core/context.h"
#include "core/localization.h"
#include "install/game_paths.h"
#include "install/transfer_status.h"

namespace {

constexpr wchar_t kSettingsKey[] = L"SOFTWARE\\Zendora Installer Tests";

template <typename State>
void Renew(State& state) {
  std::destroy_at(&state);
  std::construct_at(&state);
}

// Every test begins with the shared state that start-up would have settled, whatever the one before it left: English
// texts, and an empty settings key of the tests' own.
class FreshState : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo&) override {
    Renew(app);
    Renew(transferStatus);
    Renew(gamePaths);
    app.instance = GetModuleHandleW(nullptr);
    app.userAgent = L"Zendora tests";
    app.registryKeyPath = kSettingsKey;
    RegDeleteTreeW(HKEY_CURRENT_USER, kSettingsKey);
    SetThreadLanguage(LANG_ENGLISH);
  }
};

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  testing::UnitTest::GetInstance()->listeners().Append(new FreshState);
  const int result = RUN_ALL_TESTS();
  RegDeleteTreeW(HKEY_CURRENT_USER, kSettingsKey);
  return result;
}
