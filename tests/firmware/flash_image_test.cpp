#include "firmware/flash_image.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace veltra {
namespace {

using Rows = std::vector<uint32_t>;

TEST(FlashImage, HoldsBytesInItsRowsAlone) {
  FlashImage image;
  EXPECT_FALSE(image.SetByte(0, 1));
  EXPECT_EQ(image.FindRow(0), nullptr);
  for (int round = 0; round < 2; ++round) {  // the second one finds nothing of the first
    image.Reset();
    ASSERT_EQ(image.Rows().size(), 344U);
    for (const FlashRow& row : image.Rows()) {
      ASSERT_EQ(image.FindRow(row.address), &row);
      for (size_t n = 0; n < row.bytes.size(); ++n) ASSERT_EQ(row.bytes[n], n % 4 == 3 ? 0x00 : 0xFF);
    }
    EXPECT_EQ(DirtyRows(image), Rows());
    EXPECT_TRUE(image.SetByte(0x1234, 0xAB));
    EXPECT_TRUE(image.SetByte(0x157FF, 0xCD));
    EXPECT_FALSE(image.SetByte(0x15800, 1));
    EXPECT_FALSE(image.SetByte(0xFFFFFFFF, 1));
    EXPECT_EQ(image.FindRow(0x1200)->bytes[0x34], 0xAB);
    EXPECT_EQ(image.FindRow(0x15700)->bytes[0xFF], 0xCD);
    EXPECT_EQ(image.FindRow(0x1201), nullptr);
    EXPECT_EQ(image.FindRow(0x15800), nullptr);
    EXPECT_EQ(DirtyRows(image), (Rows{0x1200, 0x15700}));
  }
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

TEST(LoadFileImage, TakesTheProgrammableBytesAndSkipsTheOthers) {
  const std::vector<HexBytes::Start> starts = {{0x17FF, 0},  {0x1801, 1},  {0x127FF, 2}, {0x12850, 4},
                                               {0x128FF, 5}, {0x147FF, 7}, {0x15800, 9}, {0xFFFFFFFF, 10}};
  FlashImage image;
  const HexBytes bytes(starts, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});
  EXPECT_FALSE(LoadFileImage(image, bytes));
  image.Reset();
  EXPECT_TRUE(LoadFileImage(image, bytes));
  EXPECT_EQ(DirtyRows(image), (Rows{0x1800, 0x12700, 0x12900, 0x14700}));
  const std::pair<uint32_t, uint8_t> kTaken[] = {{0x1801, 2}, {0x127FF, 3}, {0x12900, 7}, {0x147FF, 8}};
  for (const auto& [address, value] : kTaken)
    EXPECT_EQ(image.FindRow(address & ~0xFFU)->bytes[address & 0xFF], value) << address;

  EXPECT_TRUE(LoadFileImage(image, {{{0, 0}}, std::vector<uint8_t>(0x20000, 0x5A)}));
  EXPECT_EQ(DirtyRows(image).size(), 303U);
  const Rows pages = PagesOf(DirtyRows(image));
  EXPECT_EQ(pages.size(), 38U);  // each named once
  EXPECT_EQ(pages.front(), 0x1800U);
  EXPECT_EQ(pages.back(), 0x14000U);
  EXPECT_TRUE(std::ranges::is_sorted(pages));
}

}  // namespace
}  // namespace veltra
