#include "program/installer_test.h"

#include "net/file_hash.h"
#include "system/files.h"

namespace {

constexpr wchar_t kSettingsKey[] = L"SOFTWARE\\Zendora Installer";
constexpr char kRepositoryPath[] = "/play/files/repository.php";
constexpr char kTelemetryPath[] = "/play/files/telemetry.php";

std::string Element(const std::string& name, const std::string& value) {
  return value.empty() ? "" : "<" + name + " value=\"" + value + "\"/>";
}

std::string PackageXml(const TestPackage& package) {
  std::string xml = "<package><title>" + package.filename + "</title>";
  xml += Element("name", package.name) + Element("filename", package.filename);
  xml += Element("default", package.isDefault ? "true" : "false") + Element("md5", Md5Of(package.content));
  for (const char* size : {"size", "upsize"}) xml += Element(size, std::to_string(package.content.size()));
  return xml + "<sources><source key=\"main\" url=\"http://zendora.example/packages/" + package.filename +
         "\"/></sources></package>";
}

void SetFolder(const wchar_t* setting, const std::wstring& path) {
  RegSetKeyValueW(HKEY_CURRENT_USER, kSettingsKey, setting, REG_SZ, path.c_str(),
                  static_cast<DWORD>((path.size() + 1) * sizeof(wchar_t)));
}

}  // namespace

std::string Md5Of(const std::string& content) {
  const TempFolder folder;
  WriteTestFile(folder / L"content", content);
  return ComputeFileMd5(folder / L"content", nullptr);
}

void InstallerTest::SetUp() {
  server_.Answer(kTelemetryPath, {});
  RegDeleteTreeW(HKEY_CURRENT_USER, kSettingsKey);
  SetFolder(L"LastInstallPath", games_.Path());
  SetFolder(L"LastTmpPath", downloads_.Path());
  SetNumber(L"Language", LANG_ENGLISH);
}

void InstallerTest::TearDown() {
  process_.reset();
  RegDeleteTreeW(HKEY_CURRENT_USER, kSettingsKey);
}

void InstallerTest::Offer(const std::vector<TestPackage>& packages) {
  std::string xml =
      "<downloader><sources default=\"main\"><source key=\"main\" title=\"Main\"/>"
      "<source key=\"other\" title=\"Other\"/></sources><packages>";
  for (const TestPackage& package : packages) {
    xml += PackageXml(package);
    server_.Answer(FilePath(package), {.body = package.content});
  }
  server_.Answer(kRepositoryPath, {.body = xml + "</packages></downloader>"});
}

void InstallerTest::Start(const std::wstring& commandLine, const std::wstring& program) {
  process_.reset();  // one at a time
  process_.emplace(commandLine, program);
  ASSERT_TRUE(WaitUntil([this] { return IsWindowVisible(Window()); })) << "the window did not appear";
}

void InstallerTest::FollowRelaunch() {
  ExpectExit();
  HWND window = nullptr;
  ASSERT_TRUE(WaitUntil([&window] { return IsWindowVisible(window = FindInstallerWindow()); })) << "no relaunch";
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  process_.emplace(process);
}

void InstallerTest::AwaitList() {
  const auto ready = [this] { return PageOf(Window()) == ComponentsPage && IsWindowEnabled(BottomButton(Window())); };
  ASSERT_TRUE(WaitUntil(ready)) << "the list of components was not filled";
}

void InstallerTest::PressInstall() {
  AwaitList();
  Press(BottomButton(Window()));
}

void InstallerTest::ExpectEnd() {
  const auto ended = [this] {
    return LogHas(Window(), L"Installation finished") && ShownText(BottomButton(Window())) == L"Exit";
  };
  EXPECT_TRUE(WaitUntil(ended)) << "log: " << testing::PrintToString(LogLines(Window()))
                                << "; box: " << testing::PrintToString(FindBox(process_->Id()).text);
}

InstallerBox InstallerTest::ExpectBox(const std::wstring& part) {
  InstallerBox box;
  const auto appeared = [&] {
    box = FindBox(process_->Id());
    return box.window && box.text.find(part) != std::wstring::npos;
  };
  EXPECT_TRUE(WaitUntil(appeared)) << "no message box says " << testing::PrintToString(part) << ", but "
                                   << testing::PrintToString(box.text)
                                   << "; log: " << testing::PrintToString(LogLines(Window()));
  return box;
}

void InstallerTest::ExpectExit() {
  const auto code = process_->WaitForExit();
  ASSERT_TRUE(code.has_value()) << "the program still runs";
  EXPECT_EQ(*code, 0u);
}

void InstallerTest::ExpectContent(const std::wstring& path, const std::string& content) {
  const auto found = ReadWholeFile(path);
  if (found == content) return;  // not EXPECT_EQ, which would print megabytes
  ADD_FAILURE() << testing::PrintToString(path) << (found ? " has the wrong content" : " can't be read");
}

std::vector<std::string> InstallerTest::ReportTypes() const {
  std::vector<std::string> types;
  for (const RecordedRequest& report : server_.RequestsOf(kTelemetryPath)) {
    const size_t start = report.body.find("&type=") + 6;
    types.push_back(report.body.substr(start, report.body.find_first_of("&\r", start) - start));
  }
  return types;
}

void InstallerTest::SetNumber(const wchar_t* setting, DWORD value) {
  RegSetKeyValueW(HKEY_CURRENT_USER, kSettingsKey, setting, REG_DWORD, &value, sizeof value);
}

bool InstallerTest::HasSetting(const wchar_t* setting) {
  return RegGetValueW(HKEY_CURRENT_USER, kSettingsKey, setting, RRF_RT_ANY, nullptr, nullptr, nullptr) == ERROR_SUCCESS;
}
