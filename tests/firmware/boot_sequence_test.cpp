// Ends of an update that no controller can bring about. All others are seen with the whole tool.
#include "firmware/boot_sequence.h"

#include <gtest/gtest.h>

#include "firmware/hex_file.h"

namespace veltra {
namespace {

TEST(BootSequence, ARowThatAnImageLacksEndsIt) {
  const struct {
    int answers;  // before the image is empty
    FlashImage BootSequence::*image;
    int32_t code;
    const char* words;
  } kCases[] = {
      {1, &BootSequence::fileImage, -104, "writing row 0x01900: not in the file"},
      {3, &BootSequence::deviceImage, -102, "reading back row 0x01800: written, but not read back"}};
  for (const auto& c : kCases) {
    BootSequence sequence;
    sequence.Start(HexBytes({{0x1800, 0}, {0x1900, 1}}, {1, 2}));
    sequence.OnEnterBootloader();
    for (int n = 0; n < c.answers; ++n) sequence.OnResponse(0, {});
    sequence.*c.image = FlashImage();
    BootEffects effects;
    for (const uint32_t row : {0x1800U, 0x1900U})
      if (sequence.state == BootState::kReading || row == 0x1900) effects = sequence.OnResponse(row, {});
    ASSERT_EQ(effects.size(), 4U);
    EXPECT_EQ(Describe(std::get<LogFailure>(effects[2]).failure), c.words);
    EXPECT_EQ(effects[3], (BootEffect{PostProgress{BootProgress::kError, c.code}}));
    if (sequence.state == BootState::kReading) {  // an answer more leads to nothing
      EXPECT_EQ(sequence.OnResponse(0x1900, {}).size(), 2U);
    }
  }
}

}  // namespace
}  // namespace veltra
