#include "firmware/flash_image.h"

#include <gtest/gtest.h>

namespace veltra {
namespace {

// That bytes come to their rows, and the rows that have some to the controller, is seen with whole updates.
TEST(FlashImage, HoldsBytesInItsRowsAlone) {
  const HexBytes oneByte({{0x1800, 0}}, {1});
  FlashImage image;
  EXPECT_FALSE(image.SetByte(0, 1));
  EXPECT_FALSE(LoadFileImage(image, oneByte));
  image.Reset();
  EXPECT_TRUE(LoadFileImage(image, oneByte));
  EXPECT_FALSE(image.SetByte(0x15800, 1));
  EXPECT_EQ(image.FindRow(0x1201), nullptr);
  EXPECT_NE(image.FindRow(0x15700), nullptr);
  EXPECT_EQ(image.FindRow(0x15800), nullptr);
}

TEST(FlashRow, EqualsByAddress) {
  FlashRow row(0x1800);
  FlashRow other(0x1800);
  other.dirty = true;
  EXPECT_TRUE(row.Equals(other));
  other.bytes[255] = 1;
  EXPECT_FALSE(row.Equals(other));
  EXPECT_FALSE(row.Equals(FlashRow(0x1900)));
  row.bytes.fill(0);
  EXPECT_TRUE(row.Equals(FlashRow(0x1900)));
}

}  // namespace
}  // namespace veltra
