// What is too long for the line; every other story of the queue is a scenario.
#include "tests/tool_test.h"

namespace veltra {
namespace {

using Texts = std::vector<std::string>;

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

}  // namespace
}  // namespace veltra
