// One test of the real program under Wine: a clean registry and data folder, a new line on COM2, and the
// observer on the same desktop.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/windows/dialog.h"
#include "tests/windows/line.h"
#include "tests/windows/observer.h"
#include "tests/windows/process.h"

namespace windows_test {

inline constexpr char kMainWindow[] = "VeltraInternal";
inline constexpr char kSettingsKey[] = "SOFTWARE\\Veltra\\Sarvik5";

// Windows messages that the tests send.
inline constexpr uint32_t kNull = 0x0000;  // WM_NULL: an answer means that the tool serves its messages
inline constexpr uint32_t kClose = 0x0010;
inline constexpr uint32_t kCommand = 0x0111;
inline constexpr uint32_t kPowerBroadcast = 0x0218;
inline constexpr int64_t kSuspend = 0x0004;          // PBT_APMSUSPEND
inline constexpr int64_t kResumeAutomatic = 0x0012;  // PBT_APMRESUMEAUTOMATIC
inline constexpr uint32_t kQueryPicFirmware = 0x80DF;
inline constexpr uint32_t kDeviceToolRequest = 0x876C;
inline constexpr uint32_t kDeviceReportRequest = 0x876D;
inline constexpr uint32_t kStatusLedRequest = 0x876F;
inline constexpr uint32_t kCodecStatusQuery = 0x8770;

// Wine does not end a wait for comm events when the other end of a pseudo terminal hangs up, as a serial
// driver does when its device is gone: there the tool cannot know.
inline constexpr char kWineWaitsForEver[] = "Wine's wait for comm events outlives the line";

class ToolTest : public testing::Test {
 protected:
  static void SetUpTestSuite();
  void SetUp() override;
  void TearDown() override;

  static windows_test::Observer& Observer() { return *observer_; }
  static windows_test::Dialog Dialog(const std::string& caption) { return {*observer_, caption}; }
  windows_test::Line& Line() { return *line_; }
  // Pulls the line out of COM2; PlugLine puts another one in.
  void PullLine() { line_.reset(); }
  void PlugLine() { line_ = std::make_unique<windows_test::Line>(linkPath_); }
  const std::filesystem::path& LinkPath() const { return linkPath_; }

  // ---- the tool
  // Starts it without the dialog at the end of start-up.
  void StartTool(const std::vector<std::string>& arguments = {"-s"}, const Where& where = Where::current());
  // Starts it without delay, answers everything that it asks at start, and forgets what happened until then.
  void StartQuietTool(const Where& where = Where::current());
  void EndTool(const Where& where = Where::current());
  bool IsToolRunning() { return tool_->IsRunning(); }
  size_t ToolThreadCount() { return tool_->ThreadCount(); }
  int ExitCode(const Where& where = Where::current()) { return tool_->ExitCode(where); }
  int64_t SendTool(uint32_t message, int64_t wParam = 0, int64_t lParam = 0,
                   const Where& where = Where::current());

  // The Windows session has ended, and the observer with it: brings up another.
  static void RestartSession() { observer_ = std::make_unique<windows_test::Observer>(Where::current()); }

  // ---- making the tool catch up
  // Returns when the tool serves its messages again: what it had to send is on the line.
  void AwaitAnswer(const Where& where = Where::current());
  // Returns when the tool has dealt with everything that was sent on the line.
  void AwaitLine(const Where& where = Where::current());

  // ---- settings and files
  void Set(const std::string& name, int64_t value, const Where& where = Where::current());
  std::filesystem::path DataFile(const std::string& name) const { return dataFolder_ / name; }
  // Empty when there is no such file.
  std::string ReadDataFile(const std::string& name) const;
  void AwaitLogLine(std::string_view end, const Where& where = Where::current());

 private:
  static std::unique_ptr<windows_test::Observer> observer_;
  std::filesystem::path linkPath_;
  std::filesystem::path dataFolder_;
  std::unique_ptr<windows_test::Line> line_;
  std::unique_ptr<WineProcess> tool_;
  int marks_ = 0;
};

}  // namespace windows_test
