#include "board/gain_tables.h"

#include <gtest/gtest.h>

namespace veltra {
namespace {

// Two hardware steps for ten of the user's, from the sixth ten on, rounded; below, Windows' level does the
// rest.
TEST(GainTables, FollowTheVolume) {
  for (int32_t volume = -20; volume <= 130; ++volume) {
    const int tens = volume < 5 ? 0 : std::clamp((volume + 5) / 10, 5, 10);
    EXPECT_EQ(SpeakerGainStep(volume), tens == 0 ? 0 : 0x30 + 2 * (tens - 5)) << volume;
    EXPECT_EQ(EndpointPercent(volume), volume < 5 ? 0 : volume > 55 ? 100 : 2 * volume - 10) << volume;
  }
  EXPECT_EQ(EndpointPercent(INT32_MIN), 0);
  EXPECT_EQ(EndpointPercent(INT32_MAX), 100);
}

}  // namespace
}  // namespace veltra
