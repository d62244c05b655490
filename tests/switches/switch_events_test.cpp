// What a story cannot say of the switches: the whole record of a key, and bytes that are handled late.
#include "tests/tool_test.h"

namespace veltra {
namespace {

using simulator::Button;

class Switches : public ToolTest {
 protected:
  Switches() {
    SetUserValue(u"StartupDelay", 0);
    SetUserValue(u"Sw1CmdVal", VK_RETURN);
    Start();
    New<pal::KeyInput>();
  }
  void ExpectTap() {
    const auto keys = New<pal::KeyInput>();
    ASSERT_EQ(keys.size(), 2U);
    for (size_t n = 0; n < 2; ++n) {
      EXPECT_EQ(keys[n].virtualKey, VK_RETURN);
      EXPECT_EQ(keys[n].scanCode, 0x1C);
      EXPECT_EQ(keys[n].flags, n == 0 ? 0 : static_cast<uint32_t>(KEYEVENTF_KEYUP));
    }
  }
};

// Bytes of a press may wait in the message queue when the removal is handled.
TEST_F(Switches, APressThatIsHandledAfterThePortWasClosedIsATap) {
  tablet.NotifyPort(false, u"COM2");
  for (const char byte : std::string_view("\x55\x55\x0ASw1Make\x7D\x04\x55\x55\x0A"
                                          "EscMake\x5D\x04"))
    machine.desktop.Post(tablet.MainWindow(), WM_APP + 0xCD, static_cast<uint8_t>(byte), 2);
  tablet.Advance(2s);
  ExpectTap();  // and no long press of the side button
}

TEST_F(Switches, AReleaseAloneIsStillARelease) {
  Release(Button::kSwitch1);
  const auto keys = New<pal::KeyInput>();
  ASSERT_EQ(keys.size(), 1U);
  EXPECT_EQ(keys[0].flags, static_cast<uint32_t>(KEYEVENTF_KEYUP));
}

}  // namespace
}  // namespace veltra
