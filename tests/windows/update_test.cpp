// Firmware updates of the real program: the dialog that the person sees, against the simulated controller on
// COM2.
#include <algorithm>
#include <fstream>

#include "resources/resource_ids.h"
#include "simulator/firmware_file.h"
#include "tests/windows/played_fixture.h"

namespace windows_test {
namespace {

using simulator::AddFirmwareRow;
using simulator::Fault;
using simulator::FirmwareBytes;
using simulator::FlashAfterUpdate;
using simulator::HexText;

constexpr char kDialog[] = "Firmware";
constexpr char kStarted[] = "Performing firmware update.  Please wait....  Do not turn off your device!";
constexpr char kNotStarted[] = "Could not start firmware update.  Turn off the device and try again!";
constexpr char kSucceeded[] =
    "Firmware was updated successfully. Windows will exit after you press OK.    Press the reset-button when "
    "the "
    "screen turns black.";
constexpr uint32_t kFirmwareUpdate = 2;
constexpr uint32_t kQueryEndSession = 0x0011;
constexpr int kOk = 1;
constexpr int kEscape = 27;

std::string Failed(const std::string& reason) {
  return std::string("Could not update firmware (")
      .append(reason)
      .append(")  Device should be restarted. Please retry the update after restart!");
}

// UTF-16 with its terminator.
std::string WidePath(const std::string& path) {
  std::string wide;
  for (const char c : path) wide.append({c, '\0'});
  return wide.append(2, '\0');
}

class UpdateTest : public PlayedToolTest {
 protected:
  void SetUp() override {
    PlayedToolTest::SetUp();
    StartPlayed();
  }

  // A HEX file of these rows, and the request to update with it.
  void Begin(const std::vector<uint32_t>& rows, const Where& where = Where::current()) {
    bytes_.clear();
    for (const uint32_t row : rows) AddFirmwareRow(bytes_, row);
    const std::span<const uint8_t> flash = Controller().Pic().bootloader.Memory().Bytes();
    before_.assign(flash.begin(), flash.end());
    std::ofstream(DataFile("new.hex"), std::ios::binary) << HexText(bytes_);
    Observer().Copy(kMainWindow, kFirmwareUpdate, WidePath("C:\\users\\Public\\Documents\\Sarvik5\\new.hex"),
                    where);
  }
  bool Shows(const std::string& text, const Where& where = Where::current()) {
    return Dialog(kDialog).Shows(text, where);
  }
  bool FlashIsAsTheFileSays() {
    return std::ranges::equal(Controller().Pic().bootloader.Memory().Bytes(),
                              FlashAfterUpdate(before_, bytes_));
  }

 private:
  FirmwareBytes bytes_;
  std::vector<uint8_t> before_;
};

TEST_F(UpdateTest, IsHiddenUntilAnUpdateBegins) {
  EXPECT_FALSE(Dialog(kDialog).IsVisible());
  Observer().Copy(kMainWindow, kFirmwareUpdate, WidePath("C:\\none.hex"));
  EXPECT_TRUE(Dialog(kDialog).IsVisible());
  EXPECT_TRUE(Shows(kNotStarted));
  EXPECT_TRUE(Dialog(kDialog).Look(kOk).isEnabled);
}

TEST_F(UpdateTest, TheBarIsAtItsEndWhenTheSuccessIsTold) {
  Begin({0x1800, 0x1900, 0x2000});
  EXPECT_TRUE(Shows(kStarted));
  EXPECT_FALSE(Dialog(kDialog).Look(kOk).isEnabled);
  EXPECT_EQ(Dialog(kDialog).Progress(IDC_FIRMWARE_PROGRESS), "0 of 9");
  EXPECT_EQ(SendTool(kQueryEndSession), 0);
  Controller().ServeUntil("the success text", [&] { return Shows(kSucceeded); });
  EXPECT_EQ(Dialog(kDialog).Progress(IDC_FIRMWARE_PROGRESS), "9 of 9");
  EXPECT_TRUE(FlashIsAsTheFileSays());
  EXPECT_TRUE(Controller().Pic().Violations().empty());
  EXPECT_EQ(SendTool(kQueryEndSession), 1);

  Dialog(kDialog).PressKey(kEscape);
  AwaitAnswer();
  EXPECT_TRUE(Dialog(kDialog).IsVisible());
  EXPECT_TRUE(Shows(kSucceeded));
}

TEST_F(UpdateTest, ASilentControllerIsToldAfterFiveSeconds) {
  Controller().Pic().ArmAtStep(3, Fault::kMute);
  const auto begin = std::chrono::steady_clock::now();
  Begin({0x1800});
  Controller().ServeUntil("the failure text", [&] { return Shows(Failed("time-out 3")); });
  EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
  EXPECT_TRUE(Dialog(kDialog).Look(kOk).isEnabled);
  AwaitLogLine("writing row 0x01800: no answer");

  Begin({0x1800});
  Controller().ServeUntil("the success text", [&] { return Shows(kSucceeded); });
  EXPECT_TRUE(FlashIsAsTheFileSays());
}

TEST_F(UpdateTest, AWrongByteIsToldWithItsCode) {
  Controller().Pic().Arm(Fault::kStuckBit);
  Begin({0x1800});
  Controller().ServeUntil("the failure text", [&] { return Shows(Failed("error -103")); });
}

}  // namespace
}  // namespace windows_test
