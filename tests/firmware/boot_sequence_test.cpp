// The steps of an update as values, where they fail. That they succeed is seen with the whole tool.
#include "firmware/boot_sequence.h"

#include <gtest/gtest.h>

#include "firmware/hex_file.h"

namespace veltra {
namespace {

using Content = std::vector<uint8_t>;

constexpr ArmStepTimer kArm;
constexpr CancelStepTimer kCancel;
constexpr PostProgress kStep{BootProgress::kStepAnswered, 0};

// One byte at each address.
HexBytes FileWith(std::initializer_list<uint32_t> addresses) {
  std::vector<HexBytes::Start> starts;
  for (const uint32_t address : addresses) starts.push_back({address, starts.size()});
  return {starts, std::vector<uint8_t>(starts.size(), 0x12)};
}

// A row with such a byte, read back.
Content RowOf(uint32_t address, uint8_t firstByte = 0x12) {
  const FlashRow erased(address);
  Content row(erased.bytes.begin(), erased.bytes.end());
  row[0] = firstByte;
  return row;
}

// A sequence of two rows in one page that has come as far as `state`.
BootSequence InState(BootState state) {
  BootSequence sequence;
  sequence.Start(FileWith({0x1800, 0x1900}));
  if (state > BootState::kWaitBootloader) sequence.OnEnterBootloader();
  while (sequence.state < state) {
    const uint32_t row = sequence.verifyQueue.front();
    sequence.OnResponse(row, sequence.state == BootState::kReading ? RowOf(row) : Content());
  }
  return sequence;
}

BootFailure FailureIn(const BootEffects& effects) {
  for (const BootEffect& effect : effects)
    if (const auto* log = std::get_if<LogFailure>(&effect)) return log->failure;
  ADD_FAILURE() << "no failure";
  return {};
}

TEST(BootSequence, AFileWithNothingToProgramStartsNothing) {
  for (const HexBytes& file : {HexBytes(), FileWith({0x0000, 0x17FF, 0x12800, 0x128FF, 0x14800, 0x200000})}) {
    BootSequence sequence = InState(BootState::kReading);
    EXPECT_TRUE(sequence.Start(file).empty());
    EXPECT_EQ(sequence.state, BootState::kIdle);
    EXPECT_TRUE(sequence.OnEnterBootloader().empty());
    EXPECT_EQ(sequence.OnResponse(0, {}), (BootEffects{kCancel, kStep}));  // nobody waits for it
  }
}

TEST(BootSequence, ASilentControllerIsNamedWithItsStepAndTheNextUpdateBeginsAfresh) {
  const std::pair<BootState, const char*> kCases[] = {
      {BootState::kWaitBootloader, "entering the bootloader: no answer"},
      {BootState::kErasing, "erasing page 0x01800: no answer"},
      {BootState::kWriting, "writing row 0x01800: no answer"},
      {BootState::kReading, "reading back row 0x01800: no answer"},
      {BootState::kFinishing, "finishing: no answer"}};
  for (const auto& [state, words] : kCases) {
    BootSequence sequence = InState(state);
    if (state == BootState::kWaitBootloader) {  // a stray answer does not end the wait
      EXPECT_EQ(sequence.OnResponse(0, {}), (BootEffects{kCancel, kStep, kArm}));
    }
    const BootEffects effects = sequence.OnTimeout();
    const BootFailure failure = FailureIn(effects);
    EXPECT_EQ(effects, (BootEffects{kCancel, LogFailure{failure},
                                    PostProgress{BootProgress::kTimeout, static_cast<int32_t>(state)}}));
    EXPECT_EQ(Describe(failure), words);
    BootSequence fresh;
    EXPECT_EQ(sequence.Start(FileWith({0x3000})), fresh.Start(FileWith({0x3000})));
    EXPECT_EQ(sequence.StepCount(), 4U);
    EXPECT_EQ(sequence.OnEnterBootloader(), fresh.OnEnterBootloader());
  }
}

TEST(BootSequence, ErrorsEndItWithTheirCodeAndPlace) {
  const struct {
    const char* words;
    int32_t code;
    BootEffects (*happen)(BootSequence&);
  } kCases[] = {
      {"reading back row 0x01800: 0x02000 came instead", -101,
       [](BootSequence& s) { return s.OnResponse(0x2000, RowOf(0x2000)); }},
      {"reading back row 0x01800: written, but not read back", -102,
       [](BootSequence& s) {
         s.deviceImage = FlashImage();
         s.OnResponse(0x1800, {});
         return s.OnResponse(0x1900, {});
       }},
      {"reading back row 0x01900: differs at 0x01900, file 12, controller 13", -103,
       [](BootSequence& s) {
         s.OnResponse(0x1800, RowOf(0x1800));
         return s.OnResponse(0x1900, RowOf(0x1900, 0x13));
       }},
      {"reading back row 0x01800: differs at 0x01803, file 00, controller FF",
       -103,  // the byte that does not exist
       [](BootSequence& s) {
         Content row = RowOf(0x1800);
         row[3] = 0xFF;
         s.OnResponse(0x1800, row);
         return s.OnResponse(0x1900, RowOf(0x1900));
       }},
      {"writing row 0x01900: not in the file", -104,
       [](BootSequence& s) {
         s = InState(BootState::kWriting);
         s.fileImage = FlashImage();
         return s.OnResponse(0, {});
       }},
  };
  for (const auto& error : kCases) {
    BootSequence sequence = InState(BootState::kReading);
    const BootEffects effects = error.happen(sequence);
    const BootFailure failure = FailureIn(effects);
    EXPECT_EQ(Describe(failure), error.words);
    EXPECT_EQ(effects, (BootEffects{kCancel, kStep, LogFailure{failure},
                                    PostProgress{BootProgress::kError, error.code}}));
  }
}

// A read-back that is too short leaves the erased pattern after it; one that runs over is dropped at the
// image's end.
TEST(BootSequence, TakesReadBacksOfAnyLength) {
  BootSequence tooShort = InState(BootState::kReading);
  tooShort.OnResponse(0x1800, Bytes(RowOf(0x1800)).first(1));
  tooShort.OnResponse(0x1900, Bytes(RowOf(0x1900)).first(1));
  EXPECT_EQ(tooShort.state, BootState::kFinishing);

  BootSequence tooLong;
  tooLong.Start(FileWith({0x14700}));
  tooLong.OnEnterBootloader();
  tooLong.OnResponse(0, {});
  tooLong.OnResponse(0, {});
  Content row = RowOf(0x14700);
  row.resize(70000, 0xFF);
  tooLong.OnResponse(0x14700, row);
  EXPECT_EQ(tooLong.state, BootState::kFinishing);
}

}  // namespace
}  // namespace veltra
