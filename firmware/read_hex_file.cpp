#include "firmware/read_hex_file.h"

#include <windows.h>

#include <algorithm>
#include <new>

#include "base/handles.h"

namespace veltra {
namespace {

constexpr size_t kPieceSize = size_t{64} << 10;

bool ReadPiece(const UniqueFile& file, std::vector<char>& piece, uint64_t left) {
  piece.resize(static_cast<size_t>(std::min<uint64_t>(left, kPieceSize)));
  DWORD read = 0;
  return ReadFile(file.Get(), piece.data(), static_cast<DWORD>(piece.size()), &read, nullptr) &&
         read == piece.size();
}

// To the size that the file has now; a file that ends earlier cannot be read.
std::optional<HexReading> ReadToSize(const UniqueFile& file, uint64_t size) {
  HexReader reader;
  std::vector<char> piece;
  for (uint64_t left = size; left > 0; left -= piece.size()) {
    if (!ReadPiece(file, piece, left)) return std::nullopt;
    if (!reader.Take({piece.data(), piece.size()})) break;
  }
  return reader.Finish();
}

}  // namespace

std::optional<HexReading> ReadHexFile(const WideText& path) {
  const UniqueFile file(
      CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr));
  LARGE_INTEGER size = {};
  if (!file || !GetFileSizeEx(file.Get(), &size)) return std::nullopt;
  try {
    return ReadToSize(file, static_cast<uint64_t>(size.QuadPart));
  } catch (const std::bad_alloc&) {  // a file far larger than any firmware, on a 32-bit Windows
    return std::nullopt;
  }
}

}  // namespace veltra
