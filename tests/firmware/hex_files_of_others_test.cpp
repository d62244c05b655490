// HEX files that other makers' tools write, read by the reader and by GNU objcopy.
#include <gtest/gtest.h>

#include <random>

#include "firmware/hex_file.h"
#include "tests/firmware/work_folder.h"

namespace veltra {
namespace {

// From the lowest address to the highest, gaps as 0.
std::string Flat(const HexBytes& bytes) {
  std::string flat;
  for (const HexByte byte : bytes) {
    flat.resize(byte.address - (*bytes.begin()).address);
    flat += static_cast<char>(byte.value);
  }
  return flat;
}

std::string RandomData(size_t size) {
  std::mt19937 random(57600);
  std::string data(size, '\0');
  for (char& byte : data) byte = static_cast<char>(random());
  return data;
}

class HexFilesOfOthers : public testing::Test {
 protected:
  void SetUp() override {
    for (const char* program : {"objcopy", "srec_cat"})
      if (!HaveProgram(program)) GTEST_SKIP() << program << " is missing";
    folder.Write("data.bin", data);
  }

  // What a command writes into file.hex.
  std::string Make(const std::string& command) const {
    EXPECT_EQ(folder.Run(command), 0) << command;
    return folder.Read("file.hex");
  }
  // What GNU objcopy reads from a text.
  std::string FlatByObjcopy(const std::string& text) const {
    folder.Write("other.hex", text);
    EXPECT_EQ(folder.Run("objcopy -I ihex -O binary other.hex other.bin"), 0);
    return folder.Read("other.bin");
  }

  const std::string data = RandomData(5000);
  WorkFolder folder;
};

TEST_F(HexFilesOfOthers, AreReadAsObjcopyReadsThem) {
  const std::string objcopy = "objcopy -I binary -O ihex data.bin file.hex ";
  const auto srecCat = [](const std::string& filter, const std::string& options) {
    return "srec_cat data.bin -binary " + filter + " -o file.hex -intel " + options;
  };
  const struct {
    std::string command;
    uint32_t base;
    std::string_view contains;  // so that the file is of the kind that is meant
  } kCases[] = {
      {objcopy, 0, ":00000001FF\r\n"},
      {objcopy + "--change-addresses 0x1800 --set-start 0x1800", 0x1800, ":04000003"},
      {objcopy + "--change-addresses 0x12F456 --set-start 0x123456", 0x12F456, ":02000004"},
      {objcopy + "--change-addresses 0x12F456 --set-start 0x123456", 0x12F456, ":04000005"},
      {srecCat("", "-address-length=2"), 0, ":20000000"},
      {srecCat("", "-obs=1"), 0, ":01000000"},
      {srecCat("-offset 0x1800", "-obs=16"), 0x1800, ":10180000"},
      {srecCat("-offset 0x1F000", "-obs=4 -execution-start-address=0x1F000"), 0x1F000, ":02000004"},
      {srecCat("-offset 0x1F000", "-obs=32 -line-termination crlf"), 0x1F000, "\r\n"},
      {srecCat("-offset 0xFFFFE000", "-obs=255"), 0xFFFFE000, ":FFE00000"},
  };
  for (const auto& c : kCases) {
    const std::string text = Make(c.command);
    const HexReading reading = ReadHexText(text);
    EXPECT_NE(text.find(c.contains), std::string::npos) << c.command;
    ASSERT_FALSE(reading.bytes.empty()) << c.command;
    EXPECT_EQ(reading.bytes.Run(0).address, c.base) << c.command;
    EXPECT_EQ(Flat(reading.bytes), data) << c.command;
    EXPECT_EQ(FlatByObjcopy(text), data) << c.command;
  }
}

// Sections from the highest to the lowest, a type 04 record in front of each, as linkers for 16-bit
// controllers write them.
TEST_F(HexFilesOfOthers, DescendingSectionsWithRepeatedUpperAddresses) {
  const std::string text = Make(
      "for begin in 4000 3000 1500 1000 0; do"
      "  srec_cat data.bin -binary -crop $begin $((begin + 700)) -offset 0x1F800 -o part.hex -intel -obs=8 &&"
      "  grep -v :00000001FF part.hex >>file.hex || exit; "
      "done; echo :00000001FF >>file.hex");
  const HexReading reading = ReadHexText(text);
  ASSERT_EQ(reading.bytes.RunCount(), 4U);  // the sections at 1000 and 1500 overlap
  EXPECT_EQ(reading.bytes.size(), 700 + 1200 + 700 + 700U);
  EXPECT_EQ(reading.remarks.replacedBytes, 200U);
  EXPECT_EQ(reading.bytes.Run(0).address, 0x1F800U);
  EXPECT_EQ(Flat(reading.bytes), FlatByObjcopy(text));
}

TEST_F(HexFilesOfOthers, TheLaterOfTwoFilesWins) {
  folder.Write("patch.bin", std::string(300, '\x5A'));
  const std::string text = Make(
      "objcopy -I binary -O ihex --change-addresses 0x1800 data.bin first.hex &&"
      "objcopy -I binary -O ihex --change-addresses 0x1900 patch.bin second.hex &&"
      "grep -v :00000001FF first.hex >file.hex && cat second.hex >>file.hex");
  EXPECT_EQ(Flat(ReadHexText(text).bytes), std::string(data).replace(0x100, 300, 300, '\x5A'));
}

// objcopy writes them below 1 MiB. They add nothing: the result is that of the same file without them.
TEST_F(HexFilesOfOthers, SegmentsAddNothing) {
  const std::string text = Make("objcopy -I binary -O ihex --change-addresses 0x12900 data.bin file.hex");
  const HexReading reading = ReadHexText(text);
  EXPECT_EQ(reading.remarks.segmentLine, 1U);
  ASSERT_FALSE(reading.bytes.empty());
  EXPECT_EQ(reading.bytes.Run(0).address, 0x2900U);
  EXPECT_EQ(Flat(reading.bytes), data);
  EXPECT_EQ(FlatByObjcopy(Make("grep -v :02000002 file.hex >plain.hex; mv plain.hex file.hex")), data);
}

TEST_F(HexFilesOfOthers, BrokenOnesAreRefusedAtTheirLine) {
  const std::string make = "objcopy -I binary -O ihex data.bin file.hex && ";
  const struct {
    std::string command;
    HexRule rule;
    uint64_t line;
  } kCases[] = {
      {make + "cp file.hex copy.hex && cat copy.hex >>file.hex", HexRule::kNotBehindEnd, 315},
      {make + "sed -i '100s/...\\r$/00\\r/' file.hex", HexRule::kLength, 100},
      {make + "sed -i '200s/^:10/:11/' file.hex", HexRule::kLength, 200},
      {make + "sed -i '300s/^:10../:10FF/' file.hex", HexRule::kChecksum, 300},
      {make + "sed -i '7s/\\r/ \\r/' file.hex", HexRule::kDigits, 7},
      {"objcopy -I binary -O srec data.bin file.hex", HexRule::kBeginning, 1},
      {"cp data.bin file.hex && printf '\\n' >>file.hex", HexRule::kBeginning, 1},
  };
  for (const auto& c : kCases) {
    const HexReading reading = ReadHexText(Make(c.command));
    ASSERT_TRUE(reading.fault) << c.command;
    EXPECT_EQ(reading.fault->rule, c.rule) << c.command;
    EXPECT_EQ(reading.fault->line, c.line) << c.command;
    EXPECT_TRUE(reading.bytes.empty()) << c.command;
  }
}

}  // namespace
}  // namespace veltra
