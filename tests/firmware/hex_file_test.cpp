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
    const char* name;
    std::string text;
    List bytes;
  } kCases[] = {
      {"nothing", "", {}},
      {"one record", ":0200100012AB31\n", {{0x10, 0x12}, {0x11, 0xAB}}},
      {"lower-case digits, CR LF, empty lines",
       "\r\n\r\n:0200100012ab31\r\n\n\r:00000001ff\r\n",
       {{0x10, 0x12}, {0x11, 0xAB}}},
      {"CR alone ends a line", ":0100000001FE\r:0100010002FC\r", {{0, 1}, {1, 2}}},
      {"a last line without its end", ":0100000001FE\n:00000001FF", {{0, 1}}},
      {"a last line without its end, broken", ":0100000001FE\n:0100", {{0, 1}}},
      {"upper address", ":020000040001F9\n:0100000001FE\n", {{0x10000, 1}}},
      {"upper address in the middle",
       ":0100000001FE\n:0200000480007A\n:0100000001FE\n:020000040000FA\n:0100010002FC\n",
       {{0, 1}, {1, 2}, {0x80000000, 1}}},
      {"addresses count on behind 64 KiB",
       ":020000040001F9\n:02FFFF000102FD\n",
       {{0x1FFFF, 1}, {0x20000, 2}}},
      {"and from the last one to 0", ":02000004FFFFFC\n:02FFFF000102FD\n", {{0, 2}, {0xFFFFFFFF, 1}}},
      {"the later value wins", ":020000000102FB\n:0100010007F7\n:0100020008F5\n", {{0, 1}, {1, 7}, {2, 8}}},
      {"descending", ":0100020003FA\n:0100010002FC\n:0100000001FE\n", {{0, 1}, {1, 2}, {2, 3}}},
      {"a record without data", ":00001000F0\n:0100000001FE\n", {{0, 1}}},
      {"types 02, 03 and 05 mean nothing",
       ":020000021000EC\n:0400000300003800C1\n:0400000500003800BF\n:0100000001FE\n",
       {{0, 1}}},
      {"comments, long enough", "; ten more chars\n;123456789A\n:0100000001FE\n", {{0, 1}}},
      {"comments and ends behind the end",
       ":0100000001FE\n:00000001FF\n;123456789A\n:00000001FF\n",
       {{0, 1}}},
      {"an end with data ends too", ":0100000001FE\n:0100000112EC\n", {{0, 1}}},
      {"upper address of one byte and of none",
       ":0100000412E9\n:0100000001FE\n:00000004FC\n:0100000002FD\n",
       {{0, 2}, {0x12000000, 1}}},
  };
  for (const auto& c : kCases) {
    const HexReading reading = ReadHexText(c.text);
    EXPECT_FALSE(reading.fault) << c.name;
    EXPECT_EQ(ListOf(reading.bytes), c.bytes) << c.name;
    EXPECT_EQ(PlainHexReader::Read(c.text), c.bytes) << c.name << ", plainly read";
  }
}

TEST(HexReader, NamesTheFirstLineThatBreaksARule) {
  const std::string good = ":0100000001FE\r\n";
  const struct {
    std::string line;
    HexRule rule;
  } kCases[] = {
      {":", HexRule::kLongEnough},
      {":000001FF", HexRule::kLongEnough},
      {";x", HexRule::kLongEnough},
      {";123456789", HexRule::kLongEnough},
      {" :0100000001FE", HexRule::kBeginning},
      {"S1130000285F245F2212226A000424290008237C2A", HexRule::kBeginning},
      {":0100000001FE ", HexRule::kDigits},
      {":01000000G1FE", HexRule::kDigits},
      {":0G00000001FE", HexRule::kDigits},
      {":01000000:1FE", HexRule::kDigits},
      {":01000000@1FE", HexRule::kDigits},
      {":01000000`1FE", HexRule::kDigits},
      {std::string(":0100000\0"
                   "01FE",
                   13),
       HexRule::kDigits},
      {":01000000\xB1"
       "1FE",
       HexRule::kDigits},
      {":0100000001FE0", HexRule::kLength},
      {":0100000001FE00", HexRule::kLength},
      {":0200000001FD", HexRule::kLength},
      {":FF00000001FD", HexRule::kLength},
      {std::string(":").append(3000, '0'), HexRule::kLength},
      {":00000006FA", HexRule::kType},
      {":00000010F0", HexRule::kType},
      {":000000F010", HexRule::kType},
      {":0100000001FF", HexRule::kChecksum},
      {":0100000101FE", HexRule::kChecksum},
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
}

TEST(HexReader, RefusesEveryRecordBehindTheEndButAnotherEnd) {
  for (const unsigned type : {0, 2, 3, 4, 5}) {
    const HexReading reading = ReadHexText(":0100000001FE\n:00000001FF\n" + Record(type, 0, {0, 1}) + "\n");
    ASSERT_TRUE(reading.fault) << type;
    EXPECT_EQ(reading.fault->rule, HexRule::kNotBehindEnd) << type;
    EXPECT_EQ(reading.fault->line, 3U) << type;
  }
}

TEST(HexReader, CountsLinesAsEditorsDo) {
  for (const std::string lines :
       {"\n\n\n", "\r\r\r", "\r\n\r\n\r\n", "\n\r\n\r", "\r\n\n\n", "\r;123456789A\n\n"})
    for (const size_t size : {1, 2, 100}) {
      const HexReading reading = ReadInPieces(lines + "?\n", size);
      ASSERT_TRUE(reading.fault);
      EXPECT_EQ(reading.fault->line, 4U) << testing::PrintToString(lines) << " in pieces of " << size;
    }
}

TEST(HexReader, RemarksOnWhatIsAcceptedAndProbablyNotMeant) {
  const HexReading plain = ReadHexText(":020000040001F9\n:0100000001FE\n:00000001FF\n");
  EXPECT_EQ(plain.remarks.segmentLine, 0U);
  EXPECT_EQ(plain.remarks.oddUpperLine, 0U);
  EXPECT_EQ(plain.remarks.unreadLength, 0U);
  EXPECT_EQ(plain.remarks.replacedBytes, 0U);

  const HexReading odd = ReadHexText(
      ":020000000102FB\n:020000021000EC\n:020000021000EC\n:00000004FC\n:0100000001FE\n:00000001FF");
  EXPECT_EQ(odd.remarks.segmentLine, 2U);
  EXPECT_EQ(odd.remarks.oddUpperLine, 4U);
  EXPECT_EQ(odd.remarks.unreadLength, 11U);
  EXPECT_EQ(odd.remarks.replacedBytes, 1U);
}

TEST(HexBytes, KeepsRunsAsLongAsTheyCanBe) {
  // 2 bytes each, out of order: 10 touches 12, 20 overlaps 21, 30 lies alone.
  std::string text;
  for (const unsigned address : {30, 12, 21, 10, 20}) text += Record(0, address, {1, 2}) + "\n";
  const HexBytes bytes = ReadHexText(text).bytes;
  ASSERT_EQ(bytes.RunCount(), 3U);
  const struct {
    uint32_t address;
    Data bytes;
  } kRuns[] = {{10, {1, 2, 1, 2}}, {20, {1, 2, 2}}, {30, {1, 2}}};
  for (size_t n = 0; n < 3; ++n) {
    EXPECT_EQ(bytes.Run(n).address, kRuns[n].address);
    EXPECT_EQ(Data(bytes.Run(n).bytes.begin(), bytes.Run(n).bytes.end()), kRuns[n].bytes);
  }
}

// Texts as a hand or a linker may make them, then with a few characters changed.
class RandomText {
 public:
  explicit RandomText(unsigned seed) : random_(seed) {}

  std::string Make() {
    std::string text;
    const unsigned lines = Below(30);
    const unsigned space = Below(2) ? 0x40 : 0x10000;  // close together, so that records overlap
    for (unsigned n = 0; n < lines; ++n) text += Line(space) + kEnds[Below(std::size(kEnds))];
    if (Below(4) == 0) text += Line(space);
    return text;
  }
  std::string Mutate(std::string text) {
    for (unsigned n = Below(4); n > 0 && !text.empty(); --n) {
      const size_t at = Below(text.size());
      const unsigned kind = Below(3);
      if (kind == 0) text.erase(at, 1 + Below(3));
      if (kind == 1) text.insert(at, 1, Character());
      if (kind == 2) text[at] = Character();
    }
    return text;
  }
  unsigned Below(size_t end) { return static_cast<unsigned>(random_() % end); }

 private:
  std::string Line(unsigned space) {
    switch (Below(16)) {
      case 0:
        return Record(4, 0, {static_cast<uint8_t>(Below(2) * 0xFF), static_cast<uint8_t>(Below(2) * 0xFF)});
      case 1:
        return Record(4, 0, Data(Below(4), 1));
      case 2:
        return Record(2 + Below(4), Below(0x10000), {0x12, 0x34});
      case 3:
        return std::string(";").append(9 + Below(600), 'c');
      case 4:
        return Below(8) ? "" : Record(1, 0, {});
      default:
        break;
    }
    Data data(Below(8) ? Below(20) : Below(256));
    for (uint8_t& byte : data) byte = static_cast<uint8_t>(random_());
    return Record(0, Below(2) ? Below(space) : 0xFFFF - Below(space), data);
  }
  char Character() {
    constexpr std::string_view kUsual = ":;0123456789ABCDEFabcdefgG \r\n";
    return Below(8) ? kUsual[Below(kUsual.size())] : static_cast<char>(random_());
  }

  static constexpr const char* kEnds[] = {"\n", "\n", "\r\n", "\r\n", "\r", "\n\n"};
  std::mt19937 random_;
};

TEST(HexReader, AgreesWithThePlainRulesOnAnyText) {
  RandomText random(20241124);
  size_t accepted = 0;
  size_t refused = 0;
  size_t replacing = 0;
  for (int round = 0; round < 6000; ++round) {
    const std::string text = random.Below(3) ? random.Make() : random.Mutate(random.Make());
    const std::optional<List> expected = PlainHexReader::Read(text);
    const HexReading reading = ReadInPieces(text, random.Below(2) ? text.size() + 1 : 1 + random.Below(40));
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
