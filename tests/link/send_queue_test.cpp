// One request at a time, seen from the line, under faults.
#include "tests/tool_test.h"

namespace veltra {
namespace {

using simulator::Fault;
using simulator::SimulatedTablet;
using Texts = std::vector<std::string>;

class SendQueue : public ToolTest {
 protected:
  SendQueue() { SetUserValue(u"StartupDelay", 0); }
  // Queues a request of the tool.
  void Led(WPARAM state) { tablet.Ask(SimulatedTablet::kStatusLedRequest, state); }
  void ExpectOneAtATime() {
    for (const std::string& violation : tablet.Pic().Violations()) ADD_FAILURE() << violation;
  }
};

TEST_F(SendQueue, TheFirstByteOfAFrameGoesAlone) {
  Start();
  Led(1);
  const auto writes = New<pal::SerialWrite>();
  ASSERT_EQ(writes.size(), 2U);
  EXPECT_EQ(writes[0].bytes, std::vector<uint8_t>{0x55});
  EXPECT_EQ(writes[1].bytes.size(), std::string_view("\x55\x0ASetStatusLed=1C\x04").size());
  std::vector<pal::Time> times;
  for (const pal::Effect& effect : tablet.Since(0))
    if (std::holds_alternative<pal::SerialWrite>(effect.detail)) times.push_back(effect.at);
  EXPECT_EQ(times[times.size() - 1] - times[times.size() - 2], 5ms);
}

TEST_F(SendQueue, WaitsForTheReplyHoweverLate) {
  Start();
  tablet.Pic().SetReplyDelay(400ms);
  Led(1);
  Led(2);
  Led(3);
  tablet.Advance(300ms);
  EXPECT_EQ(NewRequests(), Texts{"SetStatusLed=1"});
  tablet.Advance(400ms);
  EXPECT_EQ(NewRequests(), Texts{"SetStatusLed=2"});
  tablet.Advance(2s);
  EXPECT_EQ(NewRequests(), Texts{"SetStatusLed=3"});
  ExpectOneAtATime();
}

TEST(SendQueueFaults, OneAtATimeHoldsUnderFaultsOfTheLine) {
  for (const Fault fault :
       {Fault::kFlip, Fault::kDrop, Fault::kDouble, Fault::kGarbage, Fault::kAgain, Fault::kEmpty}) {
    SimulatedTablet fresh;
    ASSERT_TRUE(fresh.StartAndSettle());
    const size_t before = fresh.Pic().Requests().size();
    fresh.Pic().Arm(fault);
    fresh.Ask(SimulatedTablet::kStatusLedRequest, 1);
    fresh.Ask(SimulatedTablet::kStatusLedRequest, 2);
    fresh.Advance(2s);
    const auto& requests = fresh.Pic().Requests();
    ASSERT_GE(requests.size(), before + 2) << "fault " << static_cast<int>(fault);
    EXPECT_EQ(requests.back().message.back(), '2') << "fault " << static_cast<int>(fault);
    EXPECT_TRUE(fresh.Pic().Violations().empty()) << fresh.Pic().Violations().front();
  }
}

TEST_F(SendQueue, AReplyThatNobodyAskedForTakesNothing) {
  Start();
  tablet.Pic().SendReply("surprise");
  tablet.Advance(10ms);
  Led(1);
  tablet.Advance(100ms);
  EXPECT_EQ(NewRequests(), Texts{"SetStatusLed=1"});
  ExpectOneAtATime();
}

// While the box about a recording is open, the next request has not gone out: a reply cannot be its reply.
TEST_F(SendQueue, AReplyDoesNotAnswerWhatWasNeverSent) {
  Start();
  tablet.Pic().SetReplyDelay(50ms);
  tablet.SendData(nullptr, 0, ToBytes("IRRecord"));
  Led(2);
  tablet.Advance(100ms);
  ASSERT_EQ(machine.OpenMessageBoxes().size(), 1U);
  EXPECT_EQ(NewRequests(), Texts{"IRRecord"});
  tablet.Pic().SendReply("surprise");
  tablet.Advance(100ms);
  machine.AnswerMessageBox(IDOK);
  tablet.Advance(500ms);
  EXPECT_EQ(NewRequests(), Texts{"SetStatusLed=2"});
  ExpectOneAtATime();
}

TEST_F(SendQueue, EveryThirdCorruptedFrameDropsTheQueue) {
  Start();
  tablet.Pic().Arm(Fault::kMute, 1);
  Led(1);
  Led(2);  // waits
  const std::vector<uint8_t> corrupted = {0x55, 0x55, 0x0A, 'x', 0x00, 0x04};
  const auto sentResends = [&] {
    int resends = 0;
    std::string wire;
    for (const auto& write : New<pal::SerialWrite>()) wire.append(write.bytes.begin(), write.bytes.end());
    for (size_t at = wire.find("Resend"); at != std::string::npos; at = wire.find("Resend", at + 1))
      ++resends;
    return resends;
  };
  tablet.Advance(100ms);
  New<pal::SerialWrite>();
  tablet.Pic().Arm(Fault::kMute, 2);  // the controller stays silent on the two it is asked to send again
  for (const int resends : {1, 1, 0}) {
    tablet.Pic().SendRaw(corrupted);
    tablet.Advance(100ms);
    EXPECT_EQ(sentResends(), resends);
  }
  NewRequests();
  Led(3);  // the queue is free again
  tablet.Advance(100ms);
  EXPECT_EQ(NewRequests(), Texts{"SetStatusLed=3"});
}

TEST_F(SendQueue, ATooLongRequestIsNeverSentAndBlocksUntilTheQueueIsDropped) {
  const HWND asker = machine.AddForeignWindow(u"Remote");
  Start();
  EXPECT_EQ(tablet.SendData(asker, 0, std::vector<uint8_t>(1024, 'x')), 1);
  Led(1);
  tablet.Pic().SendReply("surprise");
  tablet.Advance(1s);
  EXPECT_TRUE(NewRequests().empty());
  tablet.SendData(asker, 3, std::vector<uint8_t>(1023, 'y'));
  tablet.Advance(1s);
  EXPECT_EQ(NewRequests(), Texts{std::string(1023, 'y')});
}

TEST_F(SendQueue, WithoutAPortNothingIsQueued) {
  Start();
  tablet.NotifyPort(false, u"COM2");
  Led(1);
  tablet.NotifyPort(true, u"COM2");
  Led(2);
  tablet.Advance(100ms);
  EXPECT_EQ(NewRequests(), Texts{"SetStatusLed=2"});
}

// A request that was lost with the port must not block those that come after it.
TEST_F(SendQueue, AReopenedPortStartsWithAnEmptyQueue) {
  Start();
  tablet.Pic().Arm(Fault::kMute);
  Led(1);
  Led(2);
  tablet.Advance(100ms);
  NewRequests();
  tablet.NotifyPort(false, u"COM2");
  tablet.NotifyPort(true, u"COM2");
  Led(3);
  tablet.Advance(100ms);
  EXPECT_EQ(NewRequests(), Texts{"SetStatusLed=3"});
}

TEST_F(SendQueue, BootloaderAnswersTakeTheirRequestAndSendNothing) {
  Start();
  tablet.Pic().Arm(Fault::kMute);
  Led(1);
  Led(2);
  tablet.Advance(100ms);
  const auto frame = [](std::vector<uint8_t> message) {
    uint8_t sum = 0;
    for (const uint8_t byte : message) sum = static_cast<uint8_t>(sum + byte);
    message.insert(message.begin(), {0x55, 0x55});
    message.push_back(static_cast<uint8_t>(-sum));
    message.push_back(0x04);
    return message;
  };
  tablet.Pic().SendRaw(frame({0x01, 0x40, 0x00, 0x0C}));  // too short for its address: ignored
  tablet.Advance(100ms);
  tablet.Pic().SendReply("OK");
  tablet.Advance(100ms);
  EXPECT_EQ(NewRequests(), (Texts{"SetStatusLed=1", "SetStatusLed=2"}));

  tablet.Pic().Arm(Fault::kMute);
  Led(3);
  Led(0);
  tablet.Advance(100ms);
  tablet.Pic().SendRaw(frame({0x02}));
  tablet.Advance(100ms);
  EXPECT_EQ(NewRequests(), Texts{"SetStatusLed=3"});
}

}  // namespace
}  // namespace veltra
