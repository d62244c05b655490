// Any HEX text, in pieces of any size: the fast reader and the plain rules come to the same result. The first
// byte is the size of the pieces; when it is odd, the others are made into records whose form and checksum
// are right, so that addresses and types are tried too.
#include <algorithm>
#include <cstdlib>
#include <string>

#include "base/text.h"
#include "firmware/hex_file.h"
#include "tests/firmware/plain_hex_reader.h"

namespace {

void AppendRecord(std::string& text, veltra::Bytes record) {
  constexpr char kDigits[] = "0123456789ABCDEFabcdef";
  uint8_t sum = 0;
  const auto append = [&](uint8_t byte) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
    sum = static_cast<uint8_t>(sum + byte);
  };
  text += ':';
  for (const uint8_t byte : record) append(byte);
  append(static_cast<uint8_t>(-sum));
  text += '\n';
}

// Records of up to seven data bytes, their types 00 to 07.
std::string RecordsOf(veltra::Bytes bytes) {
  std::string text;
  while (bytes.size() >= 4) {
    const size_t count = std::min<size_t>(bytes[0] & 7, bytes.size() - 4);
    std::vector<uint8_t> record(bytes.begin(), bytes.begin() + 4 + static_cast<ptrdiff_t>(count));
    record[0] = static_cast<uint8_t>(count);
    record[3] &= 7;
    AppendRecord(text, record);
    bytes = bytes.subspan(record.size());
  }
  return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const size_t pieceSize = data[0] / 2 + 1U;
  const veltra::Bytes rest(data + 1, size - 1);
  const std::string text = data[0] % 2 ? RecordsOf(rest) : std::string(veltra::TextOf(rest));

  veltra::HexReader reader;
  for (size_t at = 0; at < text.size(); at += pieceSize)
    if (!reader.Take(std::string_view(text).substr(at, pieceSize))) break;
  const veltra::HexReading reading = reader.Finish();

  const auto expected = veltra::PlainHexReader::Read(text);
  if (reading.fault.has_value() != !expected) std::abort();
  if (expected && !std::ranges::equal(*expected, reading.bytes)) std::abort();
  for (size_t n = 1; n < reading.bytes.RunCount(); ++n) {
    const veltra::HexRun before = reading.bytes.Run(n - 1);
    if (reading.bytes.Run(n).address <= before.address + before.bytes.size()) std::abort();
  }
  return 0;
}
