// Answers to programs that are gone, hang, or ask without end: the tool lives on, one request at a time.
#include "tests/tool_test.h"

namespace veltra {
namespace {

using simulator::SimulatedTablet;

class CopiedData : public ToolTest {
 protected:
  CopiedData() { SetUserValue(u"Sw1CmdVal", -1); }
  HWND AddAsker() {
    return machine.desktop.AddForeignWindow(u"Asker", [this](const pal::ForeignMessage& message) -> LRESULT {
      ++answers;
      lastAnswer = message.payload;
      return 1;
    });
  }
  LPARAM Named(HWND window) { return reinterpret_cast<LPARAM>(window); }
  // Time from the press to the click that it becomes.
  pal::Time PressToClick() {
    const pal::Time pressed = machine.clock.Now();
    tablet.Press(simulator::Button::kSwitch1);
    const size_t before = tablet.Mark();
    const auto clicked = [&] { return !pal::Select<pal::MouseInput>(tablet.Since(before)).empty(); };
    EXPECT_TRUE(machine.clock.AdvanceUntil(clicked, 60s));
    const pal::Time waited = machine.clock.Now() - pressed;
    Release(simulator::Button::kSwitch1);
    return waited;
  }

  size_t answers = 0;
  std::vector<uint8_t> lastAnswer;
};

TEST_F(CopiedData, AHungReceiverCostsFiveSecondsOnceAndNoPress) {
  const HWND asker = AddAsker();
  Start();
  machine.desktop.SetHung(asker, true);
  for (int n = 0; n < 1000; ++n)
    EXPECT_TRUE(
        machine.desktop.Post(tablet.MainWindow(), SimulatedTablet::kDeviceReportRequest, 0, Named(asker)));
  EXPECT_LE(PressToClick(), 5100ms);
  EXPECT_EQ(answers, 0U);
  EXPECT_LE(PressToClick(), 20ms);

  machine.desktop.SetHung(asker, false);  // it lives after all
  EXPECT_EQ(tablet.Ask(SimulatedTablet::kDeviceReportRequest, 1, Named(asker)), 0);
  EXPECT_EQ(answers, 1U);

  // One that is only busy is waited for, and what others send is answered meanwhile.
  machine.desktop.SetHung(asker, true);
  machine.clock.After(4900ms, [&] { machine.desktop.SetHung(asker, false); });
  machine.desktop.Post(tablet.MainWindow(), SimulatedTablet::kDeviceReportRequest, 2, Named(asker));
  tablet.Advance(4800ms);
  EXPECT_EQ(tablet.Ask(SimulatedTablet::kDeviceToolRequest, 13), 50);
  EXPECT_EQ(answers, 1U);
  tablet.Advance(200ms);
  EXPECT_EQ(answers, 2U);
  EXPECT_EQ(std::string(lastAnswer.begin(), lastAnswer.begin() + 4), std::string("<\0R\0", 4));
}

TEST_F(CopiedData, AnInfraredAskerThatIsGoneOrHangsLeavesTheQueueMoving) {
  const HWND gone = AddAsker();
  const HWND hung = AddAsker();
  const HWND patient = AddAsker();
  Start();
  tablet.Pic().SetReplyDelay(50ms);
  tablet.SendData(gone, 0, ToBytes("IRSend=1"));
  tablet.SendData(hung, 1, ToBytes("IRSend=2"));
  tablet.SendData(HWND_BROADCAST, 0, ToBytes("IRSend=3"));
  tablet.SendData(patient, 0, ToBytes("IRSend=4"));
  machine.desktop.RemoveForeignWindow(gone);
  machine.desktop.SetHung(hung, true);
  tablet.Advance(6s);
  EXPECT_EQ(Joined(NewRequests()), "IRSend=1; IRSend=2; IRSend=3; IRSend=4");
  EXPECT_EQ(answers, 1U);
  EXPECT_EQ(lastAnswer, ToBytes(tablet.Pic().infraredReply));
  EXPECT_EQ(tablet.Pic().Violations(), Texts());
}

// Else the tool's own answer would be a request of its own, and so on without end.
TEST_F(CopiedData, TheToolDoesNotAnswerItself) {
  Start();
  tablet.SendData(tablet.MainWindow(), 0, ToBytes("IRSend=5"));
  tablet.Ask(SimulatedTablet::kDeviceReportRequest, 2, Named(tablet.MainWindow()));
  tablet.Advance(1s);
  EXPECT_EQ(NewRequests(), Texts{"IRSend=5"});
}

TEST_F(CopiedData, ManyRequestsAreServedOneByOneBesideTheSwitches) {
  constexpr size_t kMany = 1000;
  const HWND asker = AddAsker();
  Start();
  for (size_t n = 0; n < kMany; ++n)
    ASSERT_EQ(tablet.SendData(asker, n % 2, ToBytes("IRSend=" + std::to_string(n))), 1);
  tablet.Ask(SimulatedTablet::kStatusLedRequest, 3);  // the queue is full
  EXPECT_LE(PressToClick(), 20ms);
  EXPECT_TRUE(tablet.Quit(false));
  tablet.Ask(SimulatedTablet::kStatusLedRequest, 2);
  tablet.Advance(20s);
  EXPECT_EQ(answers, kMany);
  const Texts requests = NewRequests();
  ASSERT_EQ(requests.size(), kMany + 1);
  EXPECT_EQ(requests[kMany - 1], "IRSend=999");
  EXPECT_EQ(requests[kMany], "SetStatusLed=2");
  EXPECT_NE(Log().find("Send queue . . . .  >_<    full, refused: SetStatusLed=3\r\n"), std::string::npos);
  EXPECT_EQ(tablet.Pic().Violations(), Texts());
}

}  // namespace
}  // namespace veltra
