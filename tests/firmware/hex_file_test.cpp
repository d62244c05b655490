#include "firmware/hex_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ostream>
#include <random>

#include "tests/firmware/plain_hex_reader.h"

namespace veltra {

void PrintTo(const HexByte& byte, std::ostream* out) {
  *out << std::hex << byte.address << ":" << int{byte.value};
}

namespace {

using List = std::vector<HexByte>;
using Data = std::vector<uint8_t>;

List ListOf(const HexBytes& bytes) {
  return {bytes.begin(), bytes.end()};
}

// Read in pieces of that size.
HexReading ReadInPieces(std::string_view text, size_t size) {
  HexReader reader;
  for (; !text.empty(); text.remove_prefix(std::min(size, text.size())))
    if (!reader.Take(text.substr(0, size))) break;
  return reader.Finish();
}

std::string Record(unsigned type, unsigned address, const Data& data) {
  std::string record = ":";
  unsigned sum = 0;
  const auto append = [&](unsigned byte) {
    constexpr char kDigits[] = "0123456789abcdefABCDEF";
    for (const unsigned digit : {byte >> 4 & 15, byte & 15})
      record += kDigits[digit >= 10 && sum % 3 == 0 ? digit + 6 : digit];
    sum += byte;
  };
  append(static_cast<unsigned>(data.size()));
  append(address >> 8);
  append(address & 0xFF);
  append(type);
  for (const uint8_t byte : data) append(byte);
  append(-sum & 0xFF);
  return record;
}

TEST(HexReader, PlacesBytes) {
  const struct {
    std::string text;
    List bytes;
  } kCases[] = {
      {"", {}},
      // digits of both cases, every line end, empty lines, comments, ends
      {"\r\n:0200100012ab31\r\n\n\r:0100120007E6\n:00000001ff\r\n;123456789A\n:00000001FF\n",
       {{0x10, 0x12}, {0x11, 0xAB}, {0x12, 7}}},
      {":0100000001FE\n:0100010002FC", {{0, 1}}},  // a last line without its end
      {":0100000001FE\n:0100", {{0, 1}}},
      // upper addresses: there and back, of one byte, of none; addresses count on over 64 KiB and the last
      // one
      {":0200000480007A\n:0100000001FE\n:020000040000FA\n:0100010002FC\n", {{1, 2}, {0x80000000, 1}}},
      {":0100000412E9\n:0100000001FE\n:00000004FC\n:0100000002FD\n", {{0, 2}, {0x12000000, 1}}},
      {":020000040001F9\n:02FFFF000102FD\n", {{0x1FFFF, 1}, {0x20000, 2}}},
      {":02000004FFFFFC\n:02FFFF000102FD\n", {{0, 2}, {0xFFFFFFFF, 1}}},
      {":020000000102FB\n:0100020008F5\n:0100010007F7\n", {{0, 1}, {1, 7}, {2, 8}}},  // the later one wins
      // no data; types 02, 03 and 05 mean nothing; an end with data
      {":00001000F0\n:020000021000EC\n:0400000300003800C1\n:0400000500003800BF\n:0100000001FE\n"
       ":0100000112EC\n",
       {{0, 1}}},
  };
  for (const auto& c : kCases) {
    const HexReading reading = ReadHexText(c.text);
    EXPECT_FALSE(reading.fault) << c.text;
    EXPECT_EQ(ListOf(reading.bytes), c.bytes) << c.text;
    EXPECT_EQ(PlainHexReader::Read(c.text), c.bytes) << c.text << ", plainly read";
  }
}

TEST(HexReader, NamesTheFirstLineThatBreaksARule) {
  const std::string good = ":0100000001FE\r\n";
  const struct {
    std::string line;
    HexRule rule;
  } kCases[] = {
      {":", HexRule::kLongEnough},
      {";123456789", HexRule::kLongEnough},
      {" :0100000001FE", HexRule::kBeginning},
      {":0100000001FE ", HexRule::kDigits},
      {":0G00000001FE", HexRule::kDigits},
      {":01000000:1FE", HexRule::kDigits},
      {":01000000`1FE", HexRule::kDigits},
      {":01000000\xB1"
       "1FE",
       HexRule::kDigits},
      {":0100000001FE0", HexRule::kLength},
      {":0200000001FD", HexRule::kLength},
      {std::string(":").append(3000, '0'), HexRule::kLength},
      {":00000006FA", HexRule::kType},
      {":000000F010", HexRule::kType},
      {":0100000001FF", HexRule::kChecksum},
      {":0100000101FE", HexRule::kChecksum},
      {":00000005FC", HexRule::kChecksum},
  };
  for (const auto& c : kCases) {
    const std::string text = good + "\r\n" + good + c.line + "\r\n" + good;
    EXPECT_FALSE(PlainHexReader::Read(text)) << c.line;
    for (const size_t size : {text.size(), size_t{1}, size_t{7}}) {
      const HexReading reading = ReadInPieces(text, size);
      EXPECT_TRUE(reading.bytes.empty()) << c.line;
      ASSERT_TRUE(reading.fault) << c.line;
      EXPECT_EQ(reading.fault->rule, c.rule) << c.line;
      EXPECT_EQ(reading.fault->line, 4U) << c.line;
      EXPECT_EQ(reading.fault->text, c.line.substr(0, 522));
    }
  }
  const HexReading reading = ReadHexText(good + ":00000001FF\n" + good);
  ASSERT_TRUE(reading.fault);
  EXPECT_EQ(reading.fault->rule, HexRule::kNotBehindEnd);
  EXPECT_EQ(reading.fault->line, 3U);
}

TEST(HexReader, CountsLinesAsEditorsDo) {
  for (const std::string lines :
       {"\n\n\n", "\r\r\r", "\r\n\r\n\r\n", "\n\r\n\r", "\r\n\n\n", "\r;123456789A\n\n"})
    for (const size_t size : {1U, 2U, 100U}) {
      const HexReading reading = ReadInPieces(lines + "?\n", size);
      ASSERT_TRUE(reading.fault);
      EXPECT_EQ(reading.fault->line, 4U) << testing::PrintToString(lines) << " in pieces of " << size;
    }
}

// Texts as a hand or a linker may make them, every third one with a few characters changed.
std::string RandomText(std::mt19937& random) {
  constexpr const char* kLines[] = {":020000040001F9",     ":02000004FFFFFC", ":020000040000FA",
                                    ":0100000412E9",       ":00000004FC",     ":020000021000EC",
                                    ":0400000300003800C1", ";123456789A",     "",
                                    ":00000001FF"};
  constexpr const char* kEnds[] = {"\n", "\n", "\r\n", "\r\n", "\r", "\n\n"};
  constexpr std::string_view kUsual = ":;0123456789ABCDEFabcdefgG \r\n\xB1";
  const auto below = [&random](size_t end) { return static_cast<unsigned>(random() % end); };
  std::string text;
  const unsigned space = below(2) ? 0x40 : 0x10000;  // close together, so that records overlap
  for (unsigned lines = below(30); lines > 0; --lines) {
    Data data(below(8) ? below(20) : below(256));
    for (uint8_t& byte : data) byte = static_cast<uint8_t>(random());
    const bool isData = below(3) > 0;
    text += isData ? Record(0, below(2) ? below(space) : 0xFFFF - below(space), data)
                   : kLines[below(std::size(kLines) - (below(8) > 0))];  // seldom an end
    if (lines > 1 || below(2)) text += kEnds[below(std::size(kEnds))];
  }
  if (below(3) > 0) return text;
  for (unsigned n = below(4); n > 0 && !text.empty(); --n)
    text.replace(below(text.size()), below(3), below(3), kUsual[below(kUsual.size())]);
  return text;
}

TEST(HexReader, AgreesWithThePlainRulesOnAnyText) {
  std::mt19937 random(20241124);
  size_t accepted = 0;
  size_t refused = 0;
  size_t replacing = 0;
  for (int round = 0; round < 6000; ++round) {
    const std::string text = RandomText(random);
    const std::optional<List> expected = PlainHexReader::Read(text);
    const HexReading reading = ReadInPieces(text, random() % 2 ? text.size() + 1 : 1 + random() % 40);
    ASSERT_EQ(reading.fault.has_value(), !expected) << text;
    ASSERT_EQ(ListOf(reading.bytes), expected.value_or(List())) << text;
    accepted += !reading.bytes.empty();
    refused += reading.fault.has_value();
    replacing += reading.remarks.replacedBytes > 0;
  }
  EXPECT_GT(accepted, 1500U);
  EXPECT_GT(refused, 600U);
  EXPECT_GT(replacing, 300U);
}

}  // namespace
}  // namespace veltra
