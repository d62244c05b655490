// The steps of an update as values: an answer goes in, what is to be done comes out.
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
HexBytes FileWith(std::initializer_list<uint32_t> addresses, uint8_t value = 0x12) {
  std::vector<HexBytes::Start> starts;
  for (const uint32_t address : addresses) starts.push_back({address, starts.size()});
  return {starts, std::vector<uint8_t>(starts.size(), value)};
}

Content RowOf(uint32_t address, uint8_t firstByte) {
  const FlashRow erased(address);
  Content row(erased.bytes.begin(), erased.bytes.end());
  row[0] = firstByte;
  return row;
}

// The head of a command: count and word address.
Content Head(uint8_t count, uint32_t imageAddress) {
  return {count, static_cast<uint8_t>(imageAddress / 2), static_cast<uint8_t>(imageAddress / 2 >> 8),
          static_cast<uint8_t>(imageAddress / 2 >> 16)};
}

BootEffects Next(MessageType type, Content content) {
  return {kCancel, kStep, kArm, SendRequest{type, std::move(content)}};
}
BootEffects NextWrite(uint32_t row) {
  Content content = Head(1, row);
  for (const uint8_t byte : RowOf(row, 0x12)) content.push_back(byte);
  return Next(MessageType::kWriteRow, content);
}
BootEffects NextRead(uint32_t row) {
  return Next(MessageType::kReadMemory, Head(0x40, row));
}

// A sequence of two rows in one page that has come as far as `state`.
BootSequence InState(BootState state) {
  BootSequence sequence;
  sequence.Start(FileWith({0x1800, 0x1900}));
  if (state > BootState::kWaitBootloader) sequence.OnEnterBootloader();
  while (sequence.state < state)
    if (sequence.state == BootState::kReading) {
      const uint32_t row = sequence.verifyQueue.front();
      sequence.OnResponse(row, RowOf(row, 0x12));
    } else {
      sequence.OnResponse(0, {});
    }
  return sequence;
}

BootFailure FailureIn(const BootEffects& effects) {
  for (const BootEffect& effect : effects)
    if (const auto* log = std::get_if<LogFailure>(&effect)) return log->failure;
  ADD_FAILURE() << "no failure";
  return {};
}

TEST(BootSequence, ErasesWritesReadsAndFinishesOneCommandAtATime) {
  BootSequence sequence;
  constexpr std::string_view kEnter = "GotoBootloader";
  EXPECT_EQ(sequence.Start(FileWith({0x1800, 0x1900, 0x2000})),
            (BootEffects{kArm, SendRequest{MessageType::kText, {kEnter.begin(), kEnter.end()}}}));
  EXPECT_EQ(sequence.StepCount(), 2 + 3 + 3 + 1);
  EXPECT_EQ(sequence.state, BootState::kWaitBootloader);
  // The first erase command goes out twice, no other.
  EXPECT_EQ(sequence.OnEnterBootloader(),
            (BootEffects{kCancel, kArm, SendRequest{MessageType::kErasePage, {1, 0x00, 0x0C, 0x00}},
                         RepeatRequest{}}));
  EXPECT_EQ(sequence.OnResponse(0, {}), Next(MessageType::kErasePage, Head(1, 0x2000)));
  EXPECT_EQ(sequence.OnResponse(0, {}), NextWrite(0x1800));
  EXPECT_EQ(sequence.OnResponse(0, {}), NextWrite(0x1900));
  EXPECT_EQ(sequence.OnResponse(0, {}), NextWrite(0x2000));
  EXPECT_EQ(sequence.OnResponse(0, {}), NextRead(0x1800));
  EXPECT_EQ(sequence.OnResponse(0x1800, RowOf(0x1800, 0x12)), NextRead(0x1900));
  EXPECT_EQ(sequence.OnResponse(0x1900, RowOf(0x1900, 0x12)), NextRead(0x2000));
  EXPECT_EQ(sequence.OnResponse(0x2000, RowOf(0x2000, 0x12)), Next(MessageType::kFinished, {}));
  EXPECT_EQ(sequence.OnResponse(0, {}),
            (BootEffects{kCancel, kStep, PostProgress{BootProgress::kFinished, 0}}));
  EXPECT_EQ(sequence.state, BootState::kIdle);
  EXPECT_EQ(sequence.OnResponse(0, {}), (BootEffects{kCancel, kStep}));  // nobody waits for it
}

TEST(BootSequence, AFileWithNothingToProgramStartsNothing) {
  for (const HexBytes& file : {HexBytes(), FileWith({0x0000, 0x17FF, 0x12800, 0x128FF, 0x14800, 0x200000})}) {
    BootSequence sequence = InState(BootState::kReading);
    EXPECT_TRUE(sequence.Start(file).empty());
    EXPECT_EQ(sequence.state, BootState::kIdle);
    EXPECT_TRUE(sequence.OnEnterBootloader().empty());
  }
}

TEST(BootSequence, ASilentControllerIsNamedWithItsStepAndTheNextUpdateBeginsAfresh) {
  const struct {
    BootState state;
    const char* words;
  } kCases[] = {
      {BootState::kWaitBootloader, "entering the bootloader: no answer"},
      {BootState::kErasing, "erasing page 0x01800: no answer"},
      {BootState::kWriting, "writing row 0x01800: no answer"},
      {BootState::kReading, "reading back row 0x01800: no answer"},
      {BootState::kFinishing, "finishing: no answer"},
  };
  for (const auto& silent : kCases) {
    BootSequence sequence = InState(silent.state);
    if (silent.state == BootState::kWaitBootloader) {  // a stray answer does not end the wait
      EXPECT_EQ(sequence.OnResponse(0, {}), (BootEffects{kCancel, kStep, kArm}));
    }
    const BootEffects effects = sequence.OnTimeout();
    const BootFailure failure = FailureIn(effects);
    EXPECT_EQ(effects,
              (BootEffects{kCancel, LogFailure{failure},
                           PostProgress{BootProgress::kTimeout, static_cast<int32_t>(silent.state)}}));
    EXPECT_EQ(Describe(failure), silent.words);
    if (silent.state == BootState::kWriting) {  // an answer that comes late is taken up all the same
      EXPECT_EQ(sequence.OnResponse(0, {}), NextWrite(0x1900));
    }
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
       [](BootSequence& s) { return s.OnResponse(0x2000, RowOf(0x2000, 0x12)); }},
      {"reading back row 0x01800: written, but not read back", -102,
       [](BootSequence& s) {
         s.deviceImage = FlashImage();
         s.OnResponse(0x1800, {});
         return s.OnResponse(0x1900, {});
       }},
      {"reading back row 0x01900: differs at 0x01900, file 12, controller 13", -103,
       [](BootSequence& s) {
         s.OnResponse(0x1800, RowOf(0x1800, 0x12));
         return s.OnResponse(0x1900, RowOf(0x1900, 0x13));
       }},
      {"reading back row 0x01800: differs at 0x01803, file 00, controller FF",
       -103,  // the byte that does not exist
       [](BootSequence& s) {
         Content row = RowOf(0x1800, 0x12);
         row[3] = 0xFF;
         s.OnResponse(0x1800, row);
         return s.OnResponse(0x1900, RowOf(0x1900, 0x12));
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

// A read-back that is too short leaves the erased pattern behind it; one that runs over is dropped at the
// image's end.
TEST(BootSequence, TakesReadBacksOfAnyLength) {
  BootSequence tooShort = InState(BootState::kReading);
  tooShort.OnResponse(0x1800, Bytes(RowOf(0x1800, 0x12)).first(1));
  EXPECT_EQ(tooShort.OnResponse(0x1900, Bytes(RowOf(0x1900, 0x12)).first(1)),
            Next(MessageType::kFinished, {}));

  BootSequence sequence;
  sequence.Start(FileWith({0x14700}));
  sequence.OnEnterBootloader();
  sequence.OnResponse(0, {});
  sequence.OnResponse(0, {});
  Content tooLong = RowOf(0x14700, 0x12);
  tooLong.resize(70000, 0xFF);
  EXPECT_EQ(sequence.OnResponse(0x14700, tooLong), Next(MessageType::kFinished, {}));
}

}  // namespace
}  // namespace veltra
