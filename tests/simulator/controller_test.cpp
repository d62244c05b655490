#include "simulator/controller.h"

#include <gtest/gtest.h>

#include "simulator/controller_commands.h"
#include "tests/simulator/controller_bench.h"

namespace simulator {
namespace {

using std::chrono::milliseconds;

TEST(Controller, AnswersTheWholeVocabulary) {
  Bench bench;
  const struct {
    const char* request;
    const char* answer;
  } kCases[] = {
      {"Ready", "Firmware=112 | reply OK"},
      {"GetSerial", "Serial=SV5-0012345 | reply OK"},
      {"GetPCBSerial", "PCBSerial=B-20310077 | reply OK"},
      {"GetPCBVersion", "PCBVersion=3.1 | reply OK"},
      {"GetTouchSerial", "TouchSerial=T-99120034 | reply OK"},
      {"GetTouchVersion", "TouchVersion=2.4 | reply OK"},
      {"GetTouchFirmware", "TouchFirmware=1.07 | reply OK"},
      {"GetBatteryManufacturer", "reply Nordcell"},
      {"GetBatteryTemperature", "reply 2981"},
      {"GetBatteryDesignVoltage", "reply 11100"},
      {"EnableGsm=1", "reply OK"},
      {"SetStatusLed=3", "reply OK"},
      {"CalibrateTouch", "reply OK"},
      {"SetSerial=NEW-1", "reply OK"},
      {"GetSerial", "Serial=NEW-1 | reply OK"},
      {"IRRecord", "reply 01 04 05 55 00 FF 63 6F 64 65"},
      {"IRSend=7", "reply 01 04 05 55 00 FF 63 6F 64 65"},
  };
  for (const auto& exchange : kCases)
    EXPECT_EQ(bench.AskAndTake(exchange.request), exchange.answer) << exchange.request;
  EXPECT_EQ(bench.controller.Requests().size(), std::size(kCases));
  EXPECT_TRUE(bench.controller.Violations().empty());
}

TEST(Controller, RepliesAfterItsDelayAndNotBefore) {
  Bench bench;
  bench.controller.SetReplyDelay(milliseconds(7));
  bench.Ask("EnableBT=1");
  bench.Pass(Duration(6999));
  EXPECT_EQ(bench.TakeSent(), "");
  bench.Pass(Duration(1));
  EXPECT_EQ(bench.TakeSent(), "reply OK");
}

TEST(Controller, EveryFaultSpoilsWhatItSays) {
  const struct {
    Fault fault;
    const char* sent;
  } kCases[] = {
      {Fault::kFlip, "wrong checksum"},
      {Fault::kDrop, "wrong checksum"},
      {Fault::kDouble, "wrong checksum"},
      {Fault::kGarbage,
       "byte 00 outside a frame | byte FF outside a frame | byte 13 outside a frame | byte 7E outside a "
       "frame | reply 37"},
      {Fault::kMute, ""},
      {Fault::kEmpty, "reply without content"},
      {Fault::kTwice, "reply 37 | reply 37"},
      {Fault::kAgain, "Resend"},
  };
  for (const auto& faulty : kCases) {
    Bench bench;
    bench.controller.Arm(faulty.fault);
    EXPECT_EQ(bench.AskAndTake("GetBatteryCycles"), faulty.sent);
    // Once is once.
    EXPECT_EQ(bench.AskAndTake("GetBatteryCycles"), "reply 37");
  }
}

TEST(Controller, RepeatsWhatItSaidWhenAsked) {
  Bench bench;
  bench.controller.Arm(Fault::kFlip, 2);
  bench.controller.Press(Button::kSwitch1);
  EXPECT_EQ(bench.TakeSent(), "wrong checksum");
  bench.Ask("Resend");
  EXPECT_EQ(bench.TakeSent(), "wrong checksum");
  bench.Ask("Resend");
  EXPECT_EQ(bench.TakeSent(), "Sw1Make");
  EXPECT_TRUE(bench.controller.Requests().empty());  // no request, no reply
}

TEST(Controller, SeesWhenTheToolBreaksTheRules) {
  Bench hasty;
  hasty.Ask("GetSerial");
  hasty.Ask("GetPCBSerial");
  ASSERT_EQ(hasty.controller.Violations().size(), 1U);
  EXPECT_EQ(hasty.controller.Violations()[0], "GetPCBSerial before the reply to GetSerial");

  Bench garbled;
  Bytes frame = EncodeFrame(MakeMessage(MessageType::kText, "GetSerial"));
  frame[5] ^= 1;
  garbled.controller.Receive(frame);
  EXPECT_EQ(garbled.TakeSent(), "Resend");
  ASSERT_EQ(garbled.controller.Violations().size(), 1U);
  EXPECT_EQ(garbled.controller.Violations()[0], "bad frame: wrong checksum");

  Bench patient;  // a repeat that the controller asked for is no second request
  patient.controller.Arm(Fault::kAgain);
  EXPECT_EQ(patient.AskAndTake("GetBatteryCycles"), "Resend");
  EXPECT_EQ(patient.AskAndTake("GetBatteryCycles"), "reply 37");
  EXPECT_TRUE(patient.controller.Violations().empty());
}

TEST(Controller, PacedBytesTakeTheirTimeOnTheLine) {
  Bench bench;
  bench.controller.SetPaced(true);
  bench.controller.Press(Button::kSwitch1);
  bench.controller.Release(Button::kSwitch1);  // queues behind the first
  const size_t bytes = EncodeFrame(MakeMessage(MessageType::kText, "Sw1Make")).size() +
                       EncodeFrame(MakeMessage(MessageType::kText, "Sw1Break")).size();
  bench.Pass(milliseconds(1));
  EXPECT_EQ(bench.sent.size(), 5U);  // 57600 baud and 10 bits a byte: 5.76 bytes a millisecond
  bench.Pass(milliseconds(100));
  EXPECT_EQ(bench.sent.size(), bytes);
  EXPECT_NEAR(static_cast<double>(bench.lastSentAt.count()), static_cast<double>(bytes) * 1e7 / 57600, 2);
  EXPECT_EQ(bench.TakeSent(), "Sw1Make | Sw1Break");
}

TEST(Controller, CommandsDoWhatTheySayOrNothing) {
  const struct {
    const char* line;
    const char* sent;
  } kGood[] = {
      {"sw2 press", "Sw2Make"},
      {"fn1 release", "Fn1Break"},
      {"esc press", "EscMake"},
      {"battery 9", "BatteryState=0x09"},
      {"battery present off", "BatteryPresent=0"},
      {"adapter on", "AdapterPresent=1 | BatteryCharging=1"},
      {"charging off", "BatteryCharging=0"},
      {"firmware 95", "Firmware=95"},
      {"log \"low  power\"", "log low  power"},
      {"text anything", "anything"},
      {"reply", "reply without content"},
      {"raw 55 55 08 F8 04", "finish"},
  };
  for (const auto& good : kGood) {
    Bench bench;
    std::vector<std::string> words;
    ASSERT_TRUE(SplitWords(good.line, words));
    EXPECT_FALSE(FindControllerCommand(words[0])->run(bench.controller, words)) << good.line;
    EXPECT_EQ(bench.TakeSent(), good.sent);
  }
  for (const char* bad : {"sw1", "sw1 push", "sw1 press hard", "battery", "battery 300", "battery x",
                          "adapter maybe", "raw 55 5G", "raw 155", "fault", "fault flip 0", "fault flip many",
                          "fault tickle", "pace", "reply-delay 3", "firmware"}) {
    Bench bench;
    std::vector<std::string> words;
    ASSERT_TRUE(SplitWords(bad, words));
    EXPECT_TRUE(FindControllerCommand(words[0])->run(bench.controller, words)) << bad;
    EXPECT_TRUE(bench.sent.empty()) << bad;
  }
}

}  // namespace
}  // namespace simulator
