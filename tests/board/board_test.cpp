// Everything that the tool tells the board, as it crosses the I2C bus of the simulated tablet.
#include "simulator/board.h"
#include "board/endpoint_callback.h"
#include "pal/machine/person.h"
#include "resources/resource_ids.h"
#include "tests/board/bus_text.h"
#include "tests/tool_test.h"

namespace veltra {
namespace {

constexpr UINT kCodecStatusQuery = WM_APP + 0x770;

class BoardTest : public ToolTest {
 protected:
  BoardTest() { SetUserValue(u"StartupDelay", 0); }

  simulator::Board& Board() { return simulator::TheBoard(); }
  // What was transferred since the last call, and the pauses between that were longer than 10 ms.
  BusLines NewBus() {
    BusLines lines;
    pauses.clear();
    pal::Time before{};
    for (const pal::Effect& effect : tablet.Since(std::exchange(mark, tablet.Mark())))
      if (const auto* call = std::get_if<pal::DeviceCall>(&effect.detail); call && call->device == "i2c") {
        if (!lines.empty() && effect.at - before > 10ms) pauses.push_back(effect.at - before);
        before = effect.at;
        lines.push_back(call->call);
      }
    return lines;
  }
  void Operate(int32_t operation, int32_t value) {
    tablet.Ask(simulator::SimulatedTablet::kDeviceToolRequest, static_cast<WPARAM>(operation + 1), value);
  }
  void Suspend() { tablet.SendPowerEvent(PBT_APMSUSPEND); }
  void Resume() {
    tablet.SendPowerEvent(PBT_APMRESUMEAUTOMATIC);
    tablet.Advance(3s);
  }

  static constexpr int32_t kMicrophoneOn = 9;
  static constexpr int32_t kAudioProfile = 18;
  const BusText text;
  std::vector<pal::Time> pauses;
};

// The whole of both sequences, in their order and with their pauses. The controller does not answer: the bit
// of the mobile phone stays.
TEST_F(BoardTest, TheBusFromStartToExit) {
  SetUserValue(u"DisableUSBBack", 1);
  SetUserValue(u"DisableUSBBottom", 1);
  tablet.Pic().Arm(simulator::Fault::kMute);
  tablet.Start();
  tablet.Advance(10s);
  EXPECT_EQ(NewBus(), text.Of({"radios", "supply", "codec", "download", "gains 7", "amplifier",
                               "speakers 00 off", "amplifiers", "reset", "profile 1", "speakers 00 on",
                               "headphones on", "speakers 30 on"}));
  ASSERT_EQ(pauses.size(), 3U);  // the first one until the tool has its window
  EXPECT_EQ(pauses[1], 350ms);
  EXPECT_EQ(pauses[2], 450ms);
  EXPECT_EQ(tablet.Ask(kCodecStatusQuery), 1);

  Operate(kMicrophoneOn, 0);
  EXPECT_EQ(NewBus(), text.Of({"microphone on"}));
  Suspend();
  EXPECT_EQ(NewBus(), text.Of({"usb off", "suspend", "reset", "suspended"}));
  Suspend();
  EXPECT_EQ(NewBus(), BusLines());
  Resume();  // the microphone is what it was until the profile resets it
  EXPECT_EQ(NewBus(), text.Of({"usb on", "supply", "codec", "download", "microphone on", "gains 7",
                               "amplifier", "speakers 30 off", "amplifiers", "reset", "profile 1",
                               "speakers 30 on", "headphones on", "speakers 30 on"}));
  EXPECT_TRUE(tablet.Quit());
  EXPECT_EQ(NewBus(), text.Of({"exit", "reset", "exited"}));
}

TEST_F(BoardTest, EachProfileRoutesItsPathsAndSaysSo) {
  SetUserValue(u"EnableMobilePhone", 0);
  tablet.TheDesk().Open("Talk Builder 4 Class");  // keeps the call profiles
  Start();
  const struct {
    int32_t profile;
    Texts rest;  // what happens beside the bus
  } kRows[] = {
      {1, {"debug profile normal"}},
      {2, {"debug profile gsm in", "timer 9 set 5000 ms", "debug profile gsm out"}},
      {3, {"timer 9 killed", "debug profile orla in", "debug profile orla out"}},
      {4, {}},
      {5, {"debug profile internal", "timer 9 set 5000 ms"}},
      {6, {"timer 9 killed"}},
      {7, {}},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.profile);
    NewBus();
    const size_t before = mark;
    Operate(kAudioProfile, row.profile);
    EXPECT_EQ(NewBus(), text.Of({"reset", "profile " + std::to_string(row.profile)}));
    Texts rest;
    for (const pal::Effect& effect : tablet.Since(before))
      if (const std::string line = Describe(effect); !line.starts_with("i2c")) rest.push_back(line);
    rest.erase(rest.begin(), rest.begin() + 2);  // the operation and its profile, whatever it is
    EXPECT_EQ(rest, row.rest);
  }
}

TEST_F(BoardTest, EveryLevelOfTheMicrophoneHasItsGains) {
  Start();
  Operate(kAudioProfile, 4);  // switches the microphone on
  machine.desktop.Post(tablet.MainWindow(), WM_COMMAND, IDC_OPTIONS, 0);
  tablet.Advance(20ms);
  for (int level = 1; level <= 9; ++level) {
    NewBus();
    pal::person::Drag(IDO_MICROPHONE_VOLUME, level);
    tablet.Advance(50ms);
    BusLines bus = NewBus();
    bus.erase(bus.begin(), bus.end() - 6);
    EXPECT_EQ(bus, text.Of({"microphone on", "gains " + std::to_string(level)}));
  }
  Operate(kAudioProfile, 1);  // switches it off, and it stays so
  NewBus();
  pal::person::Drag(IDO_MICROPHONE_VOLUME, 3);
  tablet.Advance(50ms);
  const BusLines bus = NewBus();
  EXPECT_EQ(std::ranges::count(bus, "38: 00 C9 00 80 00 00"), 0);
  EXPECT_FALSE(bus.empty());
}

TEST_F(BoardTest, ACallProfileEndsWithItsApplication) {
  SetUserValue(u"EnableMobilePhone", 0);
  tablet.TheDesk().Open("Talk Builder 4 Class");
  Start();
  Operate(kAudioProfile, 2);
  New<pal::ExecutionState>();
  tablet.Advance(15s);
  const auto awake = New<pal::ExecutionState>();
  ASSERT_EQ(awake.size(), 3U);
  EXPECT_EQ(awake[0].flags, static_cast<uint32_t>(ES_SYSTEM_REQUIRED | ES_DISPLAY_REQUIRED));
  tablet.TheDesk().Close("Talk Builder 4 Class");
  tablet.Advance(5s);
  EXPECT_EQ(NewBus(), text.Of({"reset", "profile 1"}));
  tablet.Advance(20s);
  EXPECT_EQ(NewBus(), BusLines());
}

TEST_F(BoardTest, OnlyTheThirdProfileSurvivesASleep) {
  Start();
  for (const auto& [profile, routing] : {std::pair(3, uint8_t{0x2F}), std::pair(6, uint8_t{0x27})}) {
    Operate(kAudioProfile, profile);
    Suspend();
    Resume();
    EXPECT_EQ(Board().codec[0xE280], (std::vector<uint8_t>{0x00, routing})) << profile;
  }
}

TEST(EndpointCallback, AnswersWhatComAsksAndGoesWithItsLastReference) {
  constexpr GUID kCallback = {0x657804FA, 0xD6AD, 0x4496, {0x8A, 0x60, 0x35, 0x27, 0x52, 0xAF, 0x4F, 0x89}};
  constexpr GUID kAnother = {0x657804FA, 0xD6AD, 0x4496, {}};
  auto* const callback = new CAudioEndpointVolumeCallback;
  AUDIO_VOLUME_NOTIFICATION_DATA change = {};
  EXPECT_EQ(callback->OnNotify(&change), S_OK);
  EXPECT_EQ(callback->OnNotify(nullptr), E_INVALIDARG);
  void* object = callback;
  EXPECT_EQ(callback->QueryInterface(kAnother, &object), E_NOINTERFACE);
  EXPECT_EQ(object, nullptr);
  for (const GUID& known : {kCallback, IID_IUnknown}) {
    EXPECT_EQ(callback->QueryInterface(known, &object), S_OK);
    EXPECT_EQ(object, callback);
  }
  EXPECT_EQ(callback->Release(), 2U);
  EXPECT_EQ(callback->Release(), 1U);
  EXPECT_EQ(callback->Release(), 0U);
}

// ---- failures ---------------------------------------------------------------------------------------------

TEST_F(BoardTest, RetriesWaitLongerEachTimeAndThenSayItOnce) {
  const struct {
    uint8_t device;
    int32_t operation;
    std::vector<pal::Time> pauses;  // between the attempts
    std::string logged;
  } kRows[] = {
      {0x38, 9, {50ms, 200ms, 500ms, 500ms}, "Slaveaddr=38,ucOffset=FFFFFFFF,iNumberBytes=6,retval=-7"},
      {0x30, 4, {50ms, 200ms}, "Slaveaddr=30,ucOffset=FFFFFFFF,iNumberBytes=6,retval=-7"},
      {0x10, 1, {}, "Slaveaddr=10,ucOffset=2,iNumberBytes=1,retval=-7"},
      {0x20, 14, {}, "Slaveaddr=20,ucOffset=13,iNumberBytes=1,retval=-7"},
  };
  Start();
  for (const auto& row : kRows) {
    SCOPED_TRACE(row.logged);
    const size_t before = mark = tablet.Mark();
    Board().failures = {{row.device, static_cast<int>(row.pauses.size()) + 1, 0, -7}};
    Operate(row.operation, 0);
    NewBus();
    EXPECT_EQ(pauses, row.pauses);
    Texts balloons;
    for (const auto& change : pal::Select<pal::TrayChange>(tablet.Since(before)))
      if (change.balloon) balloons.emplace_back(change.balloon->text.begin(), change.balloon->text.end());
    EXPECT_EQ(balloons, Texts{"Error during I2C write: -7-" + row.logged.substr(10, 2)});
    EXPECT_NE(Log().find("Err I2C write. . .  >_<    " + row.logged + "\r\n"), std::string::npos) << Log();
  }
  refusedSize = 6;  // of the speakers' command
  Suspend();
  Resume();
  NewBus();
  machine.disk.Remove(simulator::SimulatedTablet::kLogFile);
  Board().failures = {{uint8_t{0x30}, 2, 0, 5}};  // the third attempt succeeds
  Operate(5, 0);
  EXPECT_EQ(NewBus().size(), 3U);
  EXPECT_EQ(Board().speakerAmp.back().back(), 0x00);
  EXPECT_EQ(Log(), "");
}

// A block ends with its failed piece, the amplifier's commands with the failed one, and the sequence goes on.
TEST_F(BoardTest, WhatFailsForGoodEndsItsPartAlone) {
  Board().failures = {{uint8_t{0x38}, 5, 4, 5}, {uint8_t{0x30}, 3, 1, 5}};  // the third piece of the program
  tablet.Start();
  tablet.Advance(100ms);
  EXPECT_EQ(tablet.Ask(kCodecStatusQuery), 2);
  tablet.Advance(10s);
  size_t programPieces = 0;
  for (const simulator::I2cTransfer& transfer : Board().transfers)
    programPieces += transfer.address == 0x38 && transfer.error == 0 && transfer.bytes.size() == 242 &&
                     transfer.bytes[0] == 0x20;
  EXPECT_EQ(programPieces, 2U);
  EXPECT_EQ(Board().codec[0xE221], (std::vector<uint8_t>{0x00, 0x05}));
  EXPECT_EQ(Board().speakerAmp.size(), 3U);  // the first of six, and the two that switch it on
  EXPECT_EQ(tablet.Ask(kCodecStatusQuery), 1);
}

TEST_F(BoardTest, WithItsPowerOffTheCodecIsLeftAlone) {
  Start();
  Suspend();
  NewBus();
  Operate(kMicrophoneOn, 0);
  Operate(kAudioProfile, 3);
  EXPECT_EQ(NewBus(), BusLines{"20: 13 44"});  // the profile's expander bit, which is not the codec's
  EXPECT_EQ(Log(), "");
  Resume();
  const BusLines bus =
      NewBus();  // nothing of the USB ports, which were left as they were: port A once, then B
  EXPECT_TRUE(bus.at(0).starts_with("20: 12") && bus.at(1).starts_with("20: 13")) << bus[0] << ", " << bus[1];
}

}  // namespace
}  // namespace veltra
