// The board and the playback device under the real program, by what their libraries were told.
#include <algorithm>
#include <fstream>

#include "tests/board/bus_text.h"
#include "tests/windows/tool_fixture.h"

namespace windows_test {
namespace {

class BoardTest : public ToolTest {
 protected:
  void SetUp() override {
    ToolTest::SetUp();
    std::filesystem::remove(DeviceLog());
  }

  static std::filesystem::path DeviceLog() { return ProgramPath("devices.log"); }
  // What one device was told since the last call.
  std::vector<std::string> NewCalls(std::string_view device) {
    std::ifstream file(DeviceLog());
    const std::string prefix = std::string(device).append(" ");
    std::vector<std::string> calls;
    for (std::string line; std::getline(file, line);)
      if (line.starts_with(prefix)) calls.push_back(line.substr(prefix.size()));
    size_t& taken = taken_[prefix];
    calls.erase(calls.begin(), calls.begin() + static_cast<ptrdiff_t>(std::exchange(taken, calls.size())));
    return calls;
  }

 private:
  std::map<std::string, size_t> taken_;
};

TEST_F(BoardTest, TheBusFromStartToExit) {
  Set("WakeupDelay", 0);
  Set("DisableUSBBack", 1);
  Set("DisableUSBBottom", 1);
  const veltra::BusText text;
  StartQuietTool();
  EXPECT_EQ(NewCalls("i2c"),
            text.Of({"radios", "supply", "codec", "download", "gains 7", "amplifier", "speakers 00 off", "amplifiers",
                     "reset", "profile 1", "speakers 00 on", "headphones on", "speakers 30 on"}));

  SendTool(kPowerBroadcast, kSuspend);
  EXPECT_EQ(NewCalls("i2c"), text.Of({"usb off", "suspend", "reset", "suspended"}));

  SendTool(kPowerBroadcast, kResumeAutomatic);
  EXPECT_EQ(NewCalls("i2c"),
            text.Of({"usb on", "supply", "codec", "download", "gains 7", "amplifier", "speakers 30 off", "amplifiers",
                     "reset", "profile 1", "speakers 30 on", "headphones on", "speakers 30 on"}));

  Observer().Post(kMainWindow, kClose);
  EXPECT_EQ(ExitCode(), 0);
  EXPECT_EQ(NewCalls("i2c"), text.Of({"exit", "reset", "exited"}));
  EXPECT_EQ(NewCalls("board"), (std::vector<std::string>{"initialize", "uninitialize"}));
}

TEST_F(BoardTest, TheVolumeReachesThePlaybackDevice) {
  constexpr uint32_t kDeviceToolRequest = 0x876C;
  constexpr int64_t kSetVolume = 11;
  constexpr int64_t kQueryVolume = 20;
  StartQuietTool();
  EXPECT_EQ(NewCalls("audio"), (std::vector<std::string>{"unmute", "level 90"}));
  SendTool(kDeviceToolRequest, kSetVolume, 30);
  EXPECT_EQ(NewCalls("audio"), (std::vector<std::string>{"unmute", "level 50"}));
  EXPECT_EQ(NewCalls("i2c").back(), "30: 05 22 00 30 01 28");
  EXPECT_EQ(SendTool(kDeviceToolRequest, kQueryVolume), 0x1001E);
}

}  // namespace
}  // namespace windows_test
