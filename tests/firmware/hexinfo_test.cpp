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
  bool Prints(std::string_view text) const { return output.find(text) != std::string::npos; }

  WorkFolder folder;
  std::string output;
  std::string errors;
};

std::string Digits(const char* format, unsigned number) {
  char text[16];
  std::snprintf(text, sizeof(text), format, number);
  return text;
}

TEST_F(Hexinfo, TellsWhatAnUpdateDoes) {
  // One byte in each of three rows of one page and in one row of another.
  folder.Write("a.hex", ":011800005592\n:011900005591\n:011FFF00558C\n:01200000558A\n");
  EXPECT_EQ(Run("a.hex"), 0);
  EXPECT_TRUE(Prints("accepted: a.hex\n"));
  EXPECT_TRUE(Prints("  4 bytes in 3 ranges\n"));
  EXPECT_TRUE(Prints("  2 pages to erase, 4 rows to write and read back\n"));
  EXPECT_FALSE(Prints("outside"));
  EXPECT_FALSE(Prints("warning"));
}

TEST_F(Hexinfo, NamesWhatLiesOutsideTheWindow) {
  // 17FE to 1801, and the ends of the row at 12800 with their neighbours.
  folder.Write("a.hex",
               ":0417FE0001020304DD\n"
               ":020000040001F9\n"
               ":0227FF000102D5\n:0228FF000102D4\n"
               ":0247FF000102B5\n");
  EXPECT_EQ(Run("a.hex"), 0);
  EXPECT_TRUE(
      Prints("  outside the programmable window, not written:\n"
             "    0x017FE to 0x017FF  2 bytes\n"
             "    0x12800 to 0x12800  1 bytes\n"
             "    0x128FF to 0x128FF  1 bytes\n"
             "    0x14800 to 0x14800  1 bytes\n"))
      << output;
}

TEST_F(Hexinfo, TellsHowLongTheLineIsBusy) {
  // A row of 0x00 and one of 0x55, each of which is escaped, at the first programmable address. Bytes of the
  // frames: enter 19, its reply 6; erase 9, twice, answer 5; write 265, answer 5; read 9, answer 265; finish
  // 5, answer 5.
  const struct {
    const char* byte;
    const char* line;
  } kRows[] = {
      {"00", "  0.1 s at 57600 baud (602 bytes on the line)"},
      {"55", "  0.2 s at 57600 baud (1114 bytes on the line)"},
  };
  for (const auto& row : kRows) {
    std::string text;
    for (unsigned n = 0; n < 256; n += 16) {
      const unsigned sum = 0x10 + 0x18 + n + 16 * static_cast<unsigned>(std::stoul(row.byte, nullptr, 16));
      text += Digits(":10%04X00", 0x1800 + n);
      for (int k = 0; k < 16; ++k) text += row.byte;
      text += Digits("%02X\n", -sum & 0xFF);
    }
    folder.Write("row.hex", text);
    EXPECT_EQ(Run("row.hex"), 0);
    EXPECT_TRUE(Prints(row.line)) << output;
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
       "  line 1 breaks the rule: behind the \":\" stand hexadecimal digits only\n    :011800005592 \n"},
      {"a\tline\x80\n",
       "  line 1 breaks the rule: a line, comments included, has at least 11 characters\n    "
       "a\\x09line\\x80\n"},
      {":00000001FF\n", "  no data\n"},
      {"", "  no data\n"},
      {":011800005592",
       "  no data\n  warning: the last line has no line end, its 13 characters are not read\n"},
      {":0100000055AA\n", "  no byte lies where an update writes\n"},
  };
  for (const auto& c : kCases) {
    folder.Write("a.hex", c.text);
    EXPECT_EQ(Run("--binary none.bin a.hex"), 1) << c.text;
    EXPECT_TRUE(Prints("refused: a.hex\n")) << output;
    EXPECT_TRUE(Prints(c.printed)) << output;
  }
}

TEST_F(Hexinfo, WritesTheBinary) {
  folder.Write("a.hex",
               ":020000040001F9\n"
               ":0400000041424344F2\n:020000040000FA\n:02FFF0003132AC\n");
  EXPECT_EQ(Run("--binary a.bin a.hex"), 0);
  EXPECT_EQ(folder.Read("a.bin"), "12" + std::string(14, '\0') + "ABCD");
}

TEST_F(Hexinfo, AnswersWrongUseWithItsUsage) {
  EXPECT_EQ(Run("--help"), 0);
  EXPECT_TRUE(Prints("usage: hexinfo"));
  folder.Write("a.hex", ":011800005592\n");
  for (const char* arguments : {"", "--binary a.hex", "a.hex b.hex", "--bin x a.hex", "a.hex --binary"}) {
    EXPECT_EQ(Run(arguments), 2) << arguments;
    EXPECT_TRUE(output.empty()) << arguments;
    EXPECT_NE(errors.find("usage: hexinfo"), std::string::npos) << arguments;
  }
  EXPECT_EQ(Run("none.hex"), 2);
  EXPECT_EQ(errors, "hexinfo: cannot read none.hex\n");
  EXPECT_EQ(Run("."), 2);
  EXPECT_EQ(Run("--binary none/a.bin a.hex"), 2);
  EXPECT_EQ(errors, "hexinfo: cannot write none/a.bin\n");
}

}  // namespace
}  // namespace veltra
