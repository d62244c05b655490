// Everything that the tool tells the board, as it crosses the I2C bus of the simulated tablet.
#include <set>

#include "simulator/board.h"
#include "tests/board/expected_bus.h"
#include "tests/tool_test.h"

namespace veltra {
namespace {

using simulator::Button;

constexpr UINT kCodecStatusQuery = WM_APP + 0x770;

struct TimedLine {
  pal::Time at;
  std::string text;
};

class BoardTest : public ToolTest {
 protected:
  BoardTest() { SetUserValue(u"StartupDelay", 0); }

  simulator::Board& Board() { return simulator::TheBoard(); }
  std::vector<TimedLine> NewTimedBus() {
    std::vector<TimedLine> lines;
    const std::vector<pal::Effect> effects = tablet.Since(mark);
    mark = tablet.Mark();
    for (const pal::Effect& effect : effects)
      if (const auto* call = std::get_if<pal::DeviceCall>(&effect.detail); call && call->device == "i2c")
        lines.push_back({effect.at, call->call});
    return lines;
  }
  BusLines NewBus() {
    BusLines lines;
    for (TimedLine& line : NewTimedBus()) lines.push_back(std::move(line.text));
    return lines;
  }
  // Starts the tool so that `mark` stays in front of the start.
  void StartWatched() {
    tablet.Start();
    tablet.Advance(3s);
  }
  void Operate(int32_t operation, int32_t value) {
    tablet.Ask(simulator::SimulatedTablet::kDeviceToolRequest, static_cast<WPARAM>(operation + 1), value);
  }
  size_t Balloons() {
    size_t count = 0;
    for (const auto& change : New<pal::TrayChange>())
      count += change.balloon && change.balloon->text.starts_with(u"Error during I2C write");
    return count;
  }
  static constexpr int32_t kAudioProfile = 18;
};

// The whole of both sequences, in their order and with their pauses.
TEST_F(BoardTest, TheBusFromStartToExit) {
  SetUserValue(u"DisableUSBBack", 1);
  SetUserValue(u"DisableUSBBottom", 1);
  ExpectedBus expected;

  StartWatched();
  const std::vector<TimedLine> start = NewTimedBus();
  expected.StartRadios();
  expected.PowerUpSupply();
  const size_t supply = expected.Take().size();
  expected.PowerUpCodec();
  const size_t codec = supply + expected.Take().size();
  expected = {};
  expected.StartRadios();
  expected.PowerUpSupply();
  expected.PowerUpCodec();
  expected.PowerUpRest();
  expected.PhoneAnswered();
  BusLines lines;
  for (const TimedLine& line : start) lines.push_back(line.text);
  ASSERT_EQ(lines, expected.Take());
  EXPECT_EQ(start[supply].at - start[supply - 1].at, 350ms);
  EXPECT_EQ(start[codec].at - start[codec - 1].at, 450ms);

  tablet.SendPowerEvent(PBT_APMSUSPEND);
  expected.UsbOff();
  expected.PowerDown();
  EXPECT_EQ(NewBus(), expected.Take());
  tablet.SendPowerEvent(PBT_APMSUSPEND);
  EXPECT_EQ(NewBus(), BusLines());

  tablet.SendPowerEvent(PBT_APMRESUMEAUTOMATIC);
  tablet.Advance(3s);
  expected.UsbOn();
  expected.PowerUpSupply();
  expected.PowerUpCodec();
  expected.PowerUpRest();
  EXPECT_EQ(NewBus(), expected.Take());

  EXPECT_TRUE(tablet.Quit());
  expected.PowerDown();
  EXPECT_EQ(NewBus(), expected.Take());
}

TEST_F(BoardTest, LongBlocksGoInPieces) {
  StartWatched();
  std::vector<std::pair<uint16_t, size_t>> pieces;
  for (const simulator::I2cTransfer& transfer : Board().transfers)
    if (transfer.address == 0x38 && transfer.bytes.size() > 60)
      if (const auto at = static_cast<uint16_t>(transfer.bytes[0] << 8 | transfer.bytes[1]); at < 0x3000)
        pieces.emplace_back(at, transfer.bytes.size() - 2);
  ASSERT_EQ(pieces.size(), 22U + 6U);
  EXPECT_EQ(pieces[1], std::pair(uint16_t{0x2028}, size_t{240}));
  EXPECT_EQ(pieces[21], std::pair(uint16_t{0x2000 + 21 * 40}, size_t{192}));
  EXPECT_EQ(pieces[23], std::pair(uint16_t{0x003C}, size_t{240}));
  EXPECT_EQ(pieces[27], std::pair(uint16_t{5 * 60}, size_t{68}));
  EXPECT_EQ(tablet.Ask(kCodecStatusQuery), 1);
}

// ---- profiles ---------------------------------------------------------------------------------------------

// Every parameter that routes sound.
std::set<uint16_t> RoutesOn(const simulator::Board& board) {
  constexpr std::pair<uint16_t, uint16_t> kRoutes[] = {{0x0016, 0x001B}, {0x00C9, 0x00C9}, {0x00CB, 0x00CB},
                                                       {0x00CD, 0x00DF}, {0x00E4, 0x00E7}, {0x00ED, 0x00F8},
                                                       {0x0102, 0x0107}};
  std::set<uint16_t> on;
  for (const auto& [first, last] : kRoutes)
    for (uint16_t address = first; address <= last; ++address)
      if (board.codec.at(address) != std::vector<uint8_t>{0, 0, 0, 0}) on.insert(address);
  return on;
}

TEST_F(BoardTest, EachProfileRoutesItsPaths) {
  struct Row {
    int32_t profile;
    std::set<uint16_t> on;  // with what the profile before, the normal one, has chosen
    bool b3;
    uint8_t routing;
    bool watches;
  };
  const Row rows[] = {
      {1, {0x16, 0x17, 0xCE, 0xD2, 0xD9, 0xE4, 0xE5, 0xE6, 0xE7, 0x102, 0x103}, true, 0x27, false},
      {2,
       {0x16, 0x17, 0x18, 0x19, 0xCE, 0xD7, 0xDE, 0xE6, 0xE7, 0xF2, 0x102, 0x103, 0x106, 0x107},
       false,
       0x2F,
       true},
      {3, {0x16, 0x17, 0xCE, 0xD2, 0xD9, 0xED, 0x106, 0x107}, false, 0x2F, false},
      {4, {0xC9, 0xCB, 0xCE, 0xD2, 0xD9, 0xE4, 0xE5}, true, 0x27, false},
      {5,
       {0x16, 0x17, 0x1A, 0x1B, 0xCE, 0xD8, 0xDF, 0xE6, 0xE7, 0xF8, 0x102, 0x103, 0x104, 0x105},
       true,
       0x2F,
       true},
      {6, {0x18, 0x19, 0xCE, 0xD4, 0xD9, 0x102, 0x103}, false, 0x2F, false},
      {7, {0xCE, 0xD2, 0xD9}, true, 0x27, false},
  };
  tablet.TheDesk().Open("Talk Builder 4 Class");  // keeps the call profiles
  Start();
  for (const Row& row : rows) {
    SCOPED_TRACE(row.profile);
    // The selectors of the normal profile, and those that it does not touch, off.
    Operate(kAudioProfile, 1);
    for (uint16_t address = 0xED; address <= 0xF8; ++address) Board().codec[address] = {0, 0, 0, 0};
    New<pal::TimerSet>();
    Operate(kAudioProfile, row.profile);
    EXPECT_EQ(RoutesOn(Board()), row.on);
    EXPECT_EQ((Board().expander[0x13] & 0x08) != 0, row.b3);
    EXPECT_EQ(Board().codec[0xE280], (std::vector<uint8_t>{0x00, row.routing}));
    bool watches = false;
    for (const auto& timer : New<pal::TimerSet>()) watches |= timer.id == 9 && timer.periodMs == 5000;
    EXPECT_EQ(watches, row.watches);
  }
}

TEST_F(BoardTest, ACallProfileEndsWithItsApplication) {
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
  EXPECT_EQ(Board().codec[0xE280], (std::vector<uint8_t>{0x00, 0x27}));
  tablet.Advance(20s);
  EXPECT_TRUE(New<pal::ExecutionState>().empty());
}

TEST_F(BoardTest, OnlyTheThirdProfileSurvivesASleep) {
  for (const auto& [profile, routing] : {std::pair(3, uint8_t{0x2F}), std::pair(6, uint8_t{0x27})}) {
    SCOPED_TRACE(profile);
    if (!tablet.MainWindow()) Start();
    Operate(kAudioProfile, profile);
    tablet.SendPowerEvent(PBT_APMSUSPEND);
    tablet.SendPowerEvent(PBT_APMRESUMEAUTOMATIC);
    tablet.Advance(3s);
    EXPECT_EQ(Board().codec[0xE280], (std::vector<uint8_t>{0x00, routing}));
  }
}

// ---- failures ---------------------------------------------------------------------------------------------

TEST_F(BoardTest, RetriesWaitLongerEachTimeAndThenSayItOnce) {
  struct Row {
    uint8_t device;
    int32_t operation;
    int32_t value;
    std::vector<pal::Time> pauses;  // between the attempts
    std::string logged;
  };
  const Row rows[] = {
      {0x38, 9, 0, {50ms, 200ms, 500ms, 500ms}, "Slaveaddr=38,ucOffset=FFFFFFFF,iNumberBytes=6,retval=5"},
      {0x30, 4, 0, {50ms, 200ms}, "Slaveaddr=30,ucOffset=FFFFFFFF,iNumberBytes=6,retval=5"},
      {0x10, 1, 0, {}, "Slaveaddr=10,ucOffset=2,iNumberBytes=1,retval=5"},
      {0x20, 14, 0, {}, "Slaveaddr=20,ucOffset=13,iNumberBytes=1,retval=5"},
  };
  Start();
  for (const Row& row : rows) {
    SCOPED_TRACE(row.logged);
    const int attempts = static_cast<int>(row.pauses.size()) + 1;
    const size_t before = mark = tablet.Mark();
    Board().failures = {{row.device, attempts, 0, 5}};
    Operate(row.operation, row.value);
    const std::vector<TimedLine> bus = NewTimedBus();
    std::vector<pal::Time> pauses;
    for (int n = 1; n < attempts; ++n)
      pauses.push_back(bus[static_cast<size_t>(n)].at - bus[static_cast<size_t>(n) - 1].at);
    EXPECT_EQ(pauses, row.pauses);
    mark = before;
    EXPECT_EQ(Balloons(), 1U);
    EXPECT_NE(Log().find("Err I2C write. . .  " + row.logged + "\r\n"), std::string::npos) << Log();
  }
}

TEST_F(BoardTest, AnAttemptThatSucceedsEndsTheRetries) {
  Start();
  Board().failures = {{uint8_t{0x30}, 2, 0, 5}};
  Operate(5, 0);
  EXPECT_EQ(NewBus().size(), 3U);
  EXPECT_EQ(Board().speakerAmp.back().back(), 0x00);
  EXPECT_EQ(Log().find("Err I2C write"), std::string::npos);
}

TEST_F(BoardTest, ABlockEndsWithItsFailedPieceAndTheSequenceGoesOn) {
  Board().failures = {{uint8_t{0x38}, 5, 4, 5}};  // the third piece of the program, for good
  StartWatched();
  size_t programPieces = 0;
  for (const simulator::I2cTransfer& transfer : Board().transfers)
    programPieces += transfer.address == 0x38 && transfer.error == 0 && transfer.bytes.size() == 242 &&
                     transfer.bytes[0] == 0x20;
  EXPECT_EQ(programPieces, 2U);
  EXPECT_EQ(Board().codec[0xE221], (std::vector<uint8_t>{0x00, 0x05}));
  EXPECT_EQ(tablet.Ask(kCodecStatusQuery), 1);
}

TEST_F(BoardTest, WithItsPowerOffTheCodecIsLeftAlone) {
  Start();
  tablet.SendPowerEvent(PBT_APMSUSPEND);
  mark = tablet.Mark();
  Operate(9, 0);
  Operate(kAudioProfile, 3);
  EXPECT_EQ(NewBus(), BusLines{"20: 13 44"});  // the profile's expander bit, which is not the codec's
  EXPECT_EQ(Log().find("Err I2C write"), std::string::npos);
}

TEST_F(BoardTest, WhenEveryTransferFailsTheToolStartsAllTheSame) {
  Board().failures = {{std::nullopt, 1'000'000, 0, 7}};
  tablet.Start();
  ASSERT_TRUE(machine.AdvanceUntil([&] { return tablet.MainWindow() != nullptr; }, 5s));
  tablet.Advance(600s);
  EXPECT_EQ(tablet.Ask(kCodecStatusQuery), 1);
  EXPECT_TRUE(tablet.Quit());
}

TEST_F(BoardTest, WithoutTheLibraryNothingIsTriedAndNothingIsSaid) {
  tablet.TheDesk().Remove(simulator::Library::kBoard);
  tablet.Start();
  tablet.Advance(3s);
  EXPECT_EQ(tablet.Ask(kCodecStatusQuery), 1);
  EXPECT_EQ(Log(), "");
  EXPECT_EQ(Balloons(), 0U);
}

}  // namespace
}  // namespace veltra
