// What is too long for the line, and a line whose thread does not end; every other story of both is a
// scenario.
#include "tests/tool_test.h"

namespace veltra {
namespace {

TEST_F(ToolTest, ATooLongRequestIsNeverSentAndBlocksUntilTheQueueIsDropped) {
  SetUserValue(u"StartupDelay", 0);
  const HWND asker = machine.desktop.AddForeignWindow(u"Remote");
  Start();
  EXPECT_EQ(tablet.SendData(asker, 0, std::vector<uint8_t>(1024, 'x')), 1);
  tablet.Ask(simulator::SimulatedTablet::kStatusLedRequest, 1);
  tablet.Pic().SendReply("surprise");
  tablet.Advance(1s);
  EXPECT_EQ(NewRequests(), Texts());
  tablet.SendData(asker, 3, std::vector<uint8_t>(1023, 'y'));
  tablet.Advance(1s);
  EXPECT_EQ(NewRequests(), Texts{std::string(1023, 'y')});
}

// No switch can press the box's button, so the tool goes on beside it.
TEST_F(ToolTest, TheBoxOfAReadErrorKeepsNobodyFromTheSwitches) {
  SetUserValue(u"Sw1CmdVal", -1);
  Start();
  machine.serial.Add(2).FailNextRead(1117, 0);
  tablet.Pic().SendText("unreadable");
  tablet.Advance(10ms);
  tablet.NotifyPort(false, u"COM2");
  tablet.NotifyPort(true, u"COM2");
  tablet.Advance(10ms);
  EXPECT_EQ(machine.boxes.Shown().size(), 1U);
  EXPECT_NE(Log().find("Pic port does not stop"), std::string::npos);
  Press(simulator::Button::kSwitch1);
  EXPECT_EQ(New<pal::MouseInput>().size(), 1U);
}

}  // namespace
}  // namespace veltra
