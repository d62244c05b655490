#include "tests/windows/tool_fixture.h"

#include <cstdlib>
#include <fstream>
#include <sstream>

namespace windows_test {

std::unique_ptr<Observer> ToolTest::observer_;

// One observer for all tests: while it runs, the Windows session stays up.
void ToolTest::SetUpTestSuite() {
  if (!observer_) RestartSession();
}

void ToolTest::SetUp() {
  const std::filesystem::path prefix = std::getenv("WINEPREFIX");
  linkPath_ = prefix / "com2";
  dataFolder_ = prefix / "drive_c/users/Public/Documents/Sarvik5";
  std::filesystem::remove_all(dataFolder_);
  Observer().DeleteKey(Root::kUser, kSettingsKey);
  Observer().DeleteKey(Root::kMachine, kSettingsKey);
  Observer().ForgetEvents();
  PlugLine();
}

void ToolTest::TearDown() {
  if (tool_ && tool_->IsRunning()) EndTool();
  Observer().CloseWindows();
}

void ToolTest::EndTool(const Where& where) {
  Observer().Post(kMainWindow, kClose, 0, 0, where);
  tool_->ExitCode(where);
}

void ToolTest::StartTool(const std::vector<std::string>& arguments, const Where& where) {
  tool_ = std::make_unique<WineProcess>("veltratool.exe", arguments, where);
}

void ToolTest::StartQuietTool(const Where& where) {
  Set("StartupDelay", 0, where);
  StartTool({"-s"}, where);
  WaitUntil(
      "the tool opens the port", [this] { return Line().IsOpen(); }, where);
  AwaitAnswer(where);
  while (!Line().TakeText(where).empty()) {
    Line().SendReply({}, where);
    AwaitLine(where);
  }
  Observer().ForgetEvents();
}

int64_t ToolTest::SendTool(uint32_t message, int64_t wParam, int64_t lParam, const Where& where) {
  return Observer().Send(kMainWindow, message, wParam, lParam, where);
}

void ToolTest::AwaitAnswer(const Where& where) {
  WaitUntil(
      "the tool has its window", [&] { return Observer().SeesWindow(kMainWindow, where); }, where);
  SendTool(kNull, 0, 0, where);
}

// Bytes are dealt with in their order, so a line of the controller's own log stands in the tool's log behind
// them.
void ToolTest::AwaitLine(const Where& where) {
  const std::string mark = "mark " + std::to_string(++marks_);
  Line().SendLogLine(mark, where);
  AwaitLogLine(mark, where);
  Observer().SeesWindow(kMainWindow, where);  // brings in the events until here
}

void ToolTest::Set(const std::string& name, int64_t value, const Where& where) {
  Observer().SetNumber(Root::kUser, kSettingsKey, name, value, where);
}

std::string ToolTest::ReadDataFile(const std::string& name) const {
  std::ostringstream content;
  content << std::ifstream(DataFile(name), std::ios::binary).rdbuf();
  return content.str();
}

void ToolTest::AwaitLogLine(std::string_view end, const Where& where) {
  WaitUntil(
      "the log has " + std::string(end),
      [&] { return ReadDataFile("DevLog.txt").find(std::string(end) + "\r\n") != std::string::npos; }, where);
}

}  // namespace windows_test
