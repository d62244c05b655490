// The program hexinfo, seen from outside.
#include <gtest/gtest.h>

#include <cstdio>

#include "tests/firmware/work_folder.h"

namespace veltra {
namespace {

class Hexinfo : public testing::Test {
 protected:
  // The exit code; what was printed is in `output`.
  int Run(const std::string& arguments) {
    const int code = folder.Run(VELTRA_HEXINFO " " + arguments + " >output.txt 2>errors.txt");
    output = folder.Read("output.txt");
    errors = folder.Read("errors.txt");
    return code;
  }

  WorkFolder folder;
  std::string output;
  std::string errors;
};

// Records of one byte, at addresses of the first 64 KiB.
std::string Records(unsigned first, unsigned last, unsigned step, unsigned byte) {
  std::string text;
  char record[16];
  for (unsigned n = first; n <= last; n += step) {
    std::snprintf(record, sizeof record, ":01%04X00%02X%02X\n", n, byte, -(1 + (n >> 8) + n + byte) & 0xFF);
    text += record;
  }
  return text;
}

TEST_F(Hexinfo, TellsWhatAnUpdateDoesWithAFile) {
  const std::string time = " bytes on the line), and what the controller needs to erase and write\n";
  const std::string outside = "  outside the programmable window, not written:\n";
  const std::string erased = "  erased with their pages, and not written:\n";
  const std::string bound =
      "  an update with it ends with error -103: fourth bytes of instructions read back as 00\n";
  const std::string noEnd = "  warning: no end-of-file record (type 01) is read; is the file whole?\n";
  std::string lines;
  char line[64];
  for (unsigned n = 0; n < 64; n += 2)
    lines.append(
        line, static_cast<size_t>(std::snprintf(line, sizeof line, "    0x%05X to 0x%05X  1 byte\n", n, n)));
  const struct {
    int code;
    std::string text;
    std::string printed;
  } kCases[] = {
      // One byte in each of three rows of one page and in one row of another.
      {0, ":011800005592\n:011900005591\n:011F0000558B\n:01200000558A\n:00000001FF\n",
       "accepted: a.hex\n  4 bytes in 4 ranges\n  2 pages to erase, 4 rows to write and read back\n"
       "  0.5 s at 57600 baud (2256" +
           time +
           "  in the flash, CRC-32 E88598A2:\n"
           "    0x01800 to 0x019FF  512 bytes\n    0x01F00 to 0x020FF  512 bytes\n" +
           erased + "    0x01A00 to 0x01EFF  1280 bytes\n    0x02100 to 0x027FF  1792 bytes\n"},
      // 17FE to 1801, and the ends of the row at 12800 with their neighbours: 127FF and 147FF are fourth
      // bytes.
      {1, ":0417FE0001020304DD\n:020000040001F9\n:0227FF000102D5\n:0228FF000102D4\n:0247FF000102B5\n",
       "would fail: a.hex\n" + bound +
           "    0x127FF is 01, and 1 more are not 00\n"
           "  10 bytes in 4 ranges\n  4 pages to erase, 4 rows to write and read back\n"
           "  0.5 s at 57600 baud (2278" +
           time +
           "  in the flash, CRC-32 61CBB800:\n"
           "    0x01800 to 0x018FF  256 bytes\n    0x12700 to 0x127FF  256 bytes\n"
           "    0x12900 to 0x129FF  256 bytes\n    0x14700 to 0x147FF  256 bytes\n" +
           erased +
           "    0x01900 to 0x01FFF  1792 bytes\n    0x12000 to 0x126FF  1792 bytes\n"
           "    0x12800 to 0x128FF  256 bytes\n    0x12A00 to 0x12FFF  1536 bytes\n"
           "    0x14000 to 0x146FF  1792 bytes\n"
           "  warning: among them is row 0x12800, which no update writes\n" +
           outside +
           "    0x017FE to 0x017FF  2 bytes\n    0x12800 to 0x12800  1 byte\n"
           "    0x128FF to 0x128FF  1 byte\n    0x14800 to 0x14800  1 byte\n" +
           noEnd},
      // Bytes of the frames: enter 19, its reply 6; erase 9, twice, answer 5; write 265, answer 5; read 9,
      // answer 265; finish 5, answer 5.
      {0,
       ":020000021000EC\n:00000004FC\n:020000021000EC\n:00000004FC\n:0118000001E6\n:0118000002E5\n:"
       "00000001FF",
       "accepted: a.hex\n  1 byte in 1 range\n  1 page to erase, 1 row to write and read back\n"
       "  0.1 s at 57600 baud (602" +
           time + "  in the flash, CRC-32 DC3E41E4:\n    0x01800 to 0x018FF  256 bytes\n" + erased +
           "    0x01900 to 0x01FFF  1792 bytes\n"
           "  warning: line 1: segments (type 02) count for nothing, the data after it go to lower "
           "addresses; use type 04\n"
           "  warning: line 2: a type 04 record without exactly two data bytes\n"
           "  warning: the last line has no line end, its 11 characters are not read\n"
           "  warning: bytes that later ones for the same addresses replace: 1\n"},
      // Each 55 is escaped.
      {1, Records(0x1800, 0x18FF, 1, 0x55) + Records(0, 79, 2, 7) + Records(0x1000, 0x10FF, 1, 7),
       "would fail: a.hex\n" + bound +
           "    0x01803 is 55, and 63 more are not 00\n"
           "  552 bytes in 42 ranges\n  1 page to erase, 1 row to write and read back\n"
           "  0.2 s at 57600 baud (1114" +
           time + "  in the flash, CRC-32 E50D6C32:\n    0x01800 to 0x018FF  256 bytes\n" + erased +
           "    0x01900 to 0x01FFF  1792 bytes\n" + outside + lines +
           "    and 9 more ranges  264 bytes\n"
           "  warning: most of it lies outside the programmable window; was it linked for this "
           "bootloader?\n" +
           noEnd},
  };
  for (const auto& c : kCases) {
    folder.Write("a.hex", c.text);
    EXPECT_EQ(Run("a.hex"), c.code);
    EXPECT_EQ(output, c.printed);
  }
}

TEST_F(Hexinfo, SaysWhyAFileIsRefused) {
  const struct {
    const char* text;
    const char* printed;
  } kCases[] = {
      {":011800005592\r\n:011800005593\r\n",
       "  line 2 breaks the rule: the bytes of a record, checksum included, add up to 0 modulo 256\n    "
       ":011800005593\n"},
      {":011800005592 \n",
       "  line 1 breaks the rule: only hexadecimal digits follow the \":\"\n    :011800005592 \n"},
      {"a\tline\x80\n",
       "  line 1 breaks the rule: a line, comments included, has at least 11 characters\n    "
       "a\\x09line\\x80\n"},
      {":00000001FF\n", "  no data\n"},
      {":011800005592",
       "  no data\n  warning: the last line has no line end, its 13 characters are not read\n"},
      {":0100000055AA\n", "  no byte lies where an update writes\n"}};
  for (const auto& c : kCases) {
    folder.Write("a.hex", c.text);
    EXPECT_EQ(Run("--binary none.bin a.hex"), 1) << c.text;
    EXPECT_TRUE(output.starts_with("refused: a.hex\n")) << output;
    EXPECT_NE(output.find(c.printed), std::string::npos) << output;
  }
}

TEST_F(Hexinfo, WritesTheBinaryAndAnswersWrongUse) {
  folder.Write("a.hex", ":020000040001F9\n:040000004142430036\n:020000040000FA\n:02FFF0003132AC\n");
  EXPECT_EQ(Run("--binary a.bin a.hex"), 0);
  EXPECT_EQ(folder.Read("a.bin"), "12" + std::string(14, '\0') + "ABC" + '\0');
  EXPECT_EQ(Run("--help"), 0);
  EXPECT_TRUE(output.starts_with("usage: hexinfo"));
  for (const char* arguments : {"", "--binary a.hex", "a.hex b.hex", "--bin x a.hex", "a.hex --binary"}) {
    EXPECT_EQ(Run(arguments), 2) << arguments;
    EXPECT_EQ(output, "") << arguments;
    EXPECT_NE(errors.find("usage: hexinfo"), std::string::npos) << arguments;
  }
  EXPECT_EQ(Run("."), 2);
  EXPECT_EQ(Run("none.hex"), 2);
  EXPECT_EQ(errors, "hexinfo: cannot read none.hex\n");
  EXPECT_EQ(Run("--binary none/a.bin a.hex"), 2);
  EXPECT_EQ(errors, "hexinfo: cannot write none/a.bin\n");
}

}  // namespace
}  // namespace veltra
