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

TEST(HexFilesOfOthers, AreReadAsObjcopyReadsThem) {
  for (const char* program : {"objcopy", "srec_cat"})
    if (!HaveProgram(program)) GTEST_SKIP() << program << " is missing";
  const WorkFolder folder;
  std::string data(5000, '\0');
  std::mt19937 random(57600);
  for (char& byte : data) byte = static_cast<char>(random());
  folder.Write("data.bin", data);
  folder.Write("patch.bin", std::string(300, '\x5A'));

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
      {objcopy + "--change-addresses 0x12F456 --set-start 0x123456", 0x12F456, ":04000005"},
      {srecCat("", "-obs=1"), 0, ":01000000"},
      {srecCat("-offset 0x1F000", "-obs=4 -execution-start-address=0x1F000"), 0x1F000, ":02000004"},
      {srecCat("-offset 0x1F000", "-obs=32 -line-termination crlf"), 0x1F000, "\r\n"},
      {srecCat("-offset 0xFFFFE000", "-obs=255"), 0xFFFFE000, ":FFE00000"},
      // Sections from the highest to the lowest, a type 04 record before each, two of them overlapping, as
      // linkers for 16-bit controllers write them.
      {"for begin in 4000 3000 1500 1000 0; do"
       "  srec_cat data.bin -binary -crop $begin $((begin + 700)) -offset 0x1F800 -o part.hex -intel -obs=8 "
       "&&"
       "  grep -v :00000001FF part.hex >>file.hex || exit; "
       "done; echo :00000001FF >>file.hex",
       0x1F800, ":08FC80"},
      // Of two files in one the later wins.
      {"objcopy -I binary -O ihex --change-addresses 0x1800 data.bin first.hex &&"
       "objcopy -I binary -O ihex --change-addresses 0x1900 patch.bin second.hex &&"
       "grep -v :00000001FF first.hex >file.hex && cat second.hex >>file.hex",
       0x1800, ":101900005A5A"},
      // Segments, which objcopy writes below 1 MiB, add nothing: the result is that of the file without them.
      {objcopy +
           "--change-addresses 0x12900 && cp file.hex whole.hex && grep -v :02000002 whole.hex >file.hex",
       0x2900, ":10290000"},
  };
  for (const auto& c : kCases) {
    SCOPED_TRACE(c.command);
    ASSERT_EQ(folder.Run("rm -f file.hex whole.hex; " + c.command), 0);
    ASSERT_EQ(folder.Run("objcopy -I ihex -O binary file.hex file.bin"), 0);
    const std::string text = folder.Read("file.hex");
    EXPECT_NE(text.find(c.contains), std::string::npos);
    const std::string whole = folder.Read("whole.hex");
    const HexReading reading = ReadHexText(whole.empty() ? text : whole);
    ASSERT_FALSE(reading.bytes.empty());
    EXPECT_EQ(reading.bytes.Run(0).address, c.base);
    EXPECT_EQ(Flat(reading.bytes), folder.Read("file.bin"));
  }
}

}  // namespace
}  // namespace veltra
