// Firmware updates at the console.
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>

#include "firmware/hex_file.h"
#include "simulator/console.h"
#include "simulator/controller_commands.h"
#include "simulator/firmware_file.h"

namespace simulator {
namespace {

// Where the files of this computer appear on the tablet.
std::string TabletPath(const std::string& name) {
  return std::string(kDocuments) + name.substr(name.find_last_of('/') + 1);
}

std::span<const uint8_t> FlashOf(Console& console) {
  return console.TheWorld().Pic().bootloader.Memory().Bytes();
}

// True when there is such a file here: then it is on the tablet now.
bool CopyFromHere(Console& console, const std::string& name) {
  std::ifstream file(name, std::ios::binary);
  if (!file) return false;
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  console.TheWorld().WriteFile(TabletPath(name), text);
  return true;
}

FirmwareBytes BytesIn(std::string_view hexText) {
  const veltra::HexReading reading = veltra::ReadHexText(hexText);
  FirmwareBytes bytes;
  for (const veltra::HexByte byte : reading.bytes) bytes[byte.address] = byte.value;
  return bytes;
}

}  // namespace

Problem RunFirmwareFile(Console& console, Words words) {
  if (words.size() < 3) return ExpectedArguments("NAME ROW...|all");
  std::vector<uint32_t> rows;
  for (const std::string& word : words.subspan(2)) {
    const std::optional<int64_t> row = ParseNumber(word);
    if (row && *row >= 0 && *row < 0x1000000 && *row % Flash::kRowSize == 0)
      rows.push_back(static_cast<uint32_t>(*row));
    else if (word != "all")
      return "not the address of a row: " + word;
  }
  if (words[2] == "all") rows = ProgrammableRows();
  FirmwareBytes bytes;
  for (const uint32_t row : rows) AddFirmwareRow(bytes, row);
  console.TheWorld().WriteFile(TabletPath(words[1]), HexText(bytes));
  return {};
}

Problem RunUpdate(Console& console, Words words) {
  if (words.size() != 2) return ExpectedArguments("FILE");
  const std::string path = TabletPath(words[1]);
  if (!CopyFromHere(console, words[1]) && !console.TheWorld().ReadFile(path))
    return "neither here nor on the tablet: " + words[1];
  const std::span<const uint8_t> flash = FlashOf(console);
  console.LastUpdate() = {path, {flash.begin(), flash.end()}};
  constexpr uint64_t kFirmwareUpdate = 2;
  std::string payload;  // UTF-16 with its terminator
  for (const char16_t unit : Utf16(path) + u'\0')
    payload.append({static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)});
  return console.TheWorld().SendData("", kFirmwareUpdate, payload) ? Problem() : "the tool does not answer";
}

Problem CheckFlash(Console& console, Words arguments, bool wanted) {
  if (!arguments.empty()) return ExpectedArguments("flash");
  const UpdateRecord& update = console.LastUpdate();
  const auto file = console.TheWorld().ReadFile(update.file);
  if (update.flash.empty() || !file) return "there was no update";
  const std::vector<uint8_t> expected = FlashAfterUpdate(update.flash, BytesIn(*file));
  const auto [in, out] = std::ranges::mismatch(expected, FlashOf(console));
  const bool equal = in == expected.end();
  if (equal == wanted) return {};
  if (equal) return "the flash is as the file says";
  char text[80];
  std::snprintf(text, sizeof text, "the flash differs at 0x%05X: %02X, should be %02X",
                static_cast<unsigned>(in - expected.begin()), *out, *in);
  return text;
}

}  // namespace simulator
