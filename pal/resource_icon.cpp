// Icon files: a directory of pictures and the pictures.
#include "pal/resource_parser.h"

namespace pal {
namespace {

constexpr size_t kHeaderSize = 6;
constexpr size_t kFileEntrySize = 16;  // in the file: 12 bytes about the picture, then its place
constexpr size_t kSharedEntrySize = 12;
constexpr uint16_t kIconType = 1;

uint32_t ReadNumber(std::string_view file, size_t at, size_t bytes) {
  uint32_t number = 0;
  for (size_t i = 0; i < bytes; ++i)
    number |= static_cast<uint32_t>(static_cast<uint8_t>(file[at + i])) << (8 * i);
  return number;
}

std::span<const uint8_t> BytesOf(std::string_view text) {
  return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

}  // namespace

CompiledIcon CompileIcon(std::string_view file, uint16_t firstId, const ScriptPlace& place) {
  if (file.size() < kHeaderSize || ReadNumber(file, 0, 2) != 0 || ReadNumber(file, 2, 2) != kIconType)
    throw ScriptError(place, "the file is no icon");
  const size_t count = ReadNumber(file, 4, 2);
  if (count == 0 || file.size() < kHeaderSize + count * kFileEntrySize)
    throw ScriptError(place, "the icon's directory is cut off");
  CompiledIcon icon;
  ByteWriter group;
  group.Bytes(BytesOf(file.substr(0, kHeaderSize)));
  for (size_t i = 0; i < count; ++i) {
    const size_t entry = kHeaderSize + i * kFileEntrySize;
    const size_t size = ReadNumber(file, entry + 8, 4);
    const size_t at = ReadNumber(file, entry + 12, 4);
    if (at > file.size() || size > file.size() - at)
      throw ScriptError(place, "a picture of the icon is cut off");
    const auto id = static_cast<uint16_t>(firstId + i);
    group.Bytes(BytesOf(file.substr(entry, kSharedEntrySize)));
    group.Word(id);
    const auto bytes = BytesOf(file.substr(at, size));
    icon.images.push_back({id, {bytes.begin(), bytes.end()}});
  }
  icon.group = group.Take();
  return icon;
}

}  // namespace pal
