#include "firmware/flash_image.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace veltra {
namespace {

FlashImage ErasedImage() {
  FlashImage image;
  image.Reset();
  return image;
}

// The list of one byte of that value at each address; the addresses ascend and do not touch.
HexBytes BytesAt(const std::vector<uint32_t>& addresses, uint8_t value) {
  std::vector<HexBytes::Start> starts;
  for (const uint32_t address : addresses) starts.push_back({address, starts.size()});
  return {starts, std::vector<uint8_t>(addresses.size(), value)};
}

TEST(FlashImage, HasNoRowBeforeResetAndErasedOnesBehindIt) {
  FlashImage image;
  EXPECT_FALSE(image.SetByte(0, 1));
  EXPECT_EQ(image.FindRow(0), nullptr);

  image.Reset();
  ASSERT_EQ(image.Rows().size(), 344U);
  EXPECT_EQ(image.Rows().back().address, 0x15700U);
  for (const FlashRow& row : image.Rows()) {
    ASSERT_FALSE(row.dirty);
    for (size_t n = 0; n < row.bytes.size(); ++n) ASSERT_EQ(row.bytes[n], (n + 1) % 4 ? 0xFF : 0x00);
  }
}

TEST(FlashImage, SetsBytesOfItsRowsOnly) {
  FlashImage image = ErasedImage();
  EXPECT_TRUE(image.SetByte(0x1234, 0xAB));
  EXPECT_TRUE(image.SetByte(0x157FF, 0xCD));
  EXPECT_FALSE(image.SetByte(0x15800, 1));
  EXPECT_FALSE(image.SetByte(0xFFFFFFFF, 1));

  ASSERT_NE(image.FindRow(0x1200), nullptr);
  EXPECT_EQ(image.FindRow(0x1200)->address, 0x1200U);
  EXPECT_EQ(image.FindRow(0x1200)->bytes[0x34], 0xAB);
  EXPECT_EQ(image.FindRow(0x15700)->bytes[0xFF], 0xCD);
  EXPECT_EQ(image.FindRow(0x1201), nullptr);
  EXPECT_EQ(image.FindRow(0x15800), nullptr);
  EXPECT_EQ(DirtyRows(image), (std::vector<uint32_t>{0x1200, 0x15700}));

  image.Reset();
  EXPECT_TRUE(DirtyRows(image).empty());
  EXPECT_EQ(image.FindRow(0x1200)->bytes[0x34], 0xFF);
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
  const std::vector<uint32_t> inside = {0x1800, 0x127FF, 0x12900, 0x147FF};
  const std::vector<uint32_t> outside = {0,       0x17FF,  0x12800, 0x12850,   0x128FF,
                                         0x14800, 0x157FF, 0x15800, 0xFFFFFFFF};
  FlashImage image = ErasedImage();
  EXPECT_TRUE(LoadFileImage(image, BytesAt(outside, 0x5A)));
  EXPECT_TRUE(DirtyRows(image).empty());

  EXPECT_TRUE(LoadFileImage(image, BytesAt(inside, 0x5A)));
  EXPECT_EQ(DirtyRows(image), (std::vector<uint32_t>{0x1800, 0x12700, 0x12900, 0x14700}));
  for (const uint32_t address : inside)
    EXPECT_EQ(image.FindRow(address & ~0xFFU)->bytes[address & 0xFF], 0x5A) << std::hex << address;

  FlashImage empty;
  EXPECT_FALSE(LoadFileImage(empty, BytesAt(inside, 0x5A)));
}

TEST(LoadFileImage, AFullFileFillsEveryProgrammableRow) {
  FlashImage image = ErasedImage();
  EXPECT_TRUE(LoadFileImage(image, {{{0, 0}}, std::vector<uint8_t>(0x20000, 0x5A)}));
  const std::vector<uint32_t> rows = DirtyRows(image);
  EXPECT_EQ(rows.size(), 303U);
  const std::vector<uint32_t> pages = PagesOf(rows);
  EXPECT_EQ(pages.size(), 38U);
  EXPECT_EQ(pages.front(), 0x1800U);
  EXPECT_EQ(pages.back(), 0x14000U);
  EXPECT_TRUE(std::is_sorted(pages.begin(), pages.end()));
}

TEST(PagesOf, NamesEachPageOnce) {
  const std::vector<uint32_t> rows = {0x1800, 0x1900, 0x2000, 0x2700, 0x14700};
  EXPECT_EQ(PagesOf(rows), (std::vector<uint32_t>{0x1800, 0x2000, 0x14000}));
  EXPECT_TRUE(PagesOf({}).empty());
}

}  // namespace
}  // namespace veltra
