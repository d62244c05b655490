#include "firmware/hex_file.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace veltra {
namespace {

constexpr uint64_t kAddressEnd = uint64_t{1} << 32;
constexpr size_t kShortestLine = 11;
constexpr unsigned kNoDigit = 0x100;  // shifted or not, it makes a byte too large

enum RecordType : uint8_t { kData = 0, kEndOfFile = 1, kSegment = 2, kUpperAddress = 4, kLastType = 5 };

constexpr auto kDigits = [] {
  std::array<uint16_t, 256> digits = {};
  digits.fill(kNoDigit);
  for (uint16_t n = 0; n < 10; ++n) digits['0' + n] = n;
  for (uint16_t n = 0; n < 6; ++n) digits['A' + n] = digits['a' + n] = static_cast<uint16_t>(10 + n);
  return digits;
}();

// The byte of two digits, more than 255 when one is none.
unsigned ByteAt(const char* digits) {
  const unsigned high = kDigits[static_cast<uint8_t>(digits[0])];
  return high << 4 | kDigits[static_cast<uint8_t>(digits[1])];
}

bool IsHexDigit(char c) {
  return kDigits[static_cast<uint8_t>(c)] != kNoDigit;
}

bool IsLineEnd(char c) {
  return c == '\r' || c == '\n';
}

// The characters in front of the first line end, all when there is none.
std::string_view LineOf(std::string_view text) {
  return {text.begin(), std::find_if(text.begin(), text.end(), IsLineEnd)};
}

// One for each run: its address, and in the lower half its place in the order of the file.
using SortKey = uint64_t;

uint32_t AddressOf(SortKey key) {
  return static_cast<uint32_t>(key >> 32);
}

// By address, digit by digit from the lowest: time in proportion to the number of keys, whatever they are.
void Sort(std::vector<SortKey>& keys) {
  std::vector<SortKey> sorted(keys.size());
  for (int shift = 32; shift < 64; shift += 8) {
    const auto digit = [shift](SortKey key) { return static_cast<uint8_t>(key >> shift); };
    std::array<size_t, 256> places = {};
    for (const SortKey key : keys) ++places[digit(key)];
    if (places[digit(keys.front())] == keys.size()) continue;
    std::exclusive_scan(places.begin(), places.end(), places.begin(), size_t{0});
    for (const SortKey key : keys) sorted[places[digit(key)]++] = key;
    keys.swap(sorted);
  }
}

// Puts runs that stand in the order of the file in ascending order. Runs that overlap or touch become one: it
// is laid out in full and each of them, in the order of the file, copied to its place there.
HexBytes InOrder(const std::vector<HexBytes::Start>& runs, std::span<const uint8_t> bytes) {
  const auto end = [&](size_t n) { return n + 1 < runs.size() ? runs[n + 1].offset : bytes.size(); };
  std::vector<SortKey> keys(runs.size());
  for (size_t n = 0; n < runs.size(); ++n) keys[n] = SortKey{runs[n].address} << 32 | n;
  Sort(keys);

  std::vector<HexBytes::Start> starts;
  std::vector<size_t> places(runs.size());  // where each run goes
  uint64_t nextAddress = 0;
  size_t size = 0;
  for (const SortKey key : keys) {
    const size_t n = static_cast<uint32_t>(key);
    const uint32_t address = AddressOf(key);
    if (starts.empty() || address > nextAddress) {
      starts.push_back({address, size});
      nextAddress = address;
    }
    places[n] = starts.back().offset + (address - starts.back().address);
    const uint64_t runEnd = uint64_t{address} + (end(n) - runs[n].offset);
    if (runEnd <= nextAddress) continue;
    size += static_cast<size_t>(runEnd - nextAddress);
    nextAddress = runEnd;
  }

  std::vector<uint8_t> ordered(size);
  for (size_t n = 0; n < runs.size(); ++n)
    std::copy(bytes.begin() + static_cast<ptrdiff_t>(runs[n].offset),
              bytes.begin() + static_cast<ptrdiff_t>(end(n)),
              ordered.begin() + static_cast<ptrdiff_t>(places[n]));
  return {std::move(starts), std::move(ordered)};
}

const char* TextOf(HexRule rule) {
  switch (rule) {
    case HexRule::kLongEnough:
      return "a line, comments included, has at least 11 characters";
    case HexRule::kBeginning:
      return "a line begins with \":\" (a record) or \";\" (a comment)";
    case HexRule::kDigits:
      return "only hexadecimal digits follow the \":\"";
    case HexRule::kLength:
      return "a record is as long as its byte count says: 11 characters and two for each byte";
    case HexRule::kType:
      return "the record type is 00 to 05";
    case HexRule::kChecksum:
      return "the bytes of a record, checksum included, add up to 0 modulo 256";
    case HexRule::kNotBehindEnd:
      return "only comments and other end-of-file records follow the end-of-file record";
  }
  return "";
}

}  // namespace

std::string Describe(const HexFault& fault) {
  return "line " + std::to_string(fault.line) + " breaks the rule: " + TextOf(fault.rule);
}

HexRun HexBytes::Run(size_t n) const {
  const size_t end = n + 1 < starts_.size() ? starts_[n + 1].offset : bytes_.size();
  const Start& start = starts_[n];
  return {start.address, std::span(bytes_).subspan(start.offset, end - start.offset)};
}

struct HexReader::Record {
  static constexpr size_t kFrameSize = 5;  // byte count, address, type, checksum

  [[nodiscard]] uint32_t Address() const { return static_cast<uint32_t>(bytes[1] << 8 | bytes[2]); }
  [[nodiscard]] uint8_t Type() const { return bytes[3]; }
  [[nodiscard]] std::span<const uint8_t> Data() const { return {&bytes[4], bytes[0]}; }

  std::array<uint8_t, 255 + kFrameSize> bytes;
};

// The length of the valid record at the beginning of the text, 0 when there is none. Looks at nothing behind
// it.
size_t HexReader::Decode(std::string_view text, Record& record) {
  if (text.size() < kShortestLine || text.front() != ':') return 0;
  const size_t size = ByteAt(&text[1]) + Record::kFrameSize;
  const size_t length = 1 + 2 * size;
  if (size > record.bytes.size() || length > text.size()) return 0;

  const char* digits = &text[1];
  unsigned all = 0;
  unsigned sum = 0;
  for (size_t n = 0; n < size; ++n, digits += 2) {
    const unsigned byte = ByteAt(digits);
    record.bytes[n] = static_cast<uint8_t>(byte);
    all |= byte;
    sum += byte;
  }
  return all < 0x100 && sum % 0x100 == 0 && record.Type() <= kLastType ? length : 0;
}

// Of a line that is neither a valid record nor a comment, the first rule that it breaks.
std::optional<HexRule> HexReader::BrokenRule(std::string_view line) {
  if (line.size() < kShortestLine) return HexRule::kLongEnough;
  if (line.front() == ';') return std::nullopt;
  if (line.front() != ':') return HexRule::kBeginning;
  if (!std::all_of(line.begin() + 1, line.end(), IsHexDigit)) return HexRule::kDigits;
  if (line.size() != 2 * (ByteAt(&line[1]) + Record::kFrameSize) + 1) return HexRule::kLength;
  if (ByteAt(&line[7]) > kLastType) return HexRule::kType;
  return HexRule::kChecksum;
}

bool HexReader::Take(std::string_view text) {
  if (heldLength_ > 0) {
    const std::string_view rest = LineOf(text);
    HoldLine(rest);
    if (rest.size() == text.size()) return true;
    text.remove_prefix(rest.size());
    OnLine(HeldLine());
    heldLength_ = 0;
  }
  while (!text.empty() && !fault_) {
    if (IsLineEnd(text.front())) {
      PassLineEnd(text.front());
      text.remove_prefix(1);
      continue;
    }
    behindCr_ = false;
    // Most lines are records, and those tell their own length.
    Record record;
    const size_t length = Decode(text, record);
    if (length > 0 && length < text.size() && IsLineEnd(text[length])) {
      OnRecord(record, text.substr(0, length));
      text.remove_prefix(length);
      continue;
    }
    const std::string_view line = LineOf(text);
    if (line.size() == text.size()) {
      HoldLine(line);
      break;
    }
    OnLine(line.substr(0, held_.size()));
    text.remove_prefix(line.size());
  }
  return !fault_;
}

void HexReader::PassLineEnd(char end) {
  if (end == '\r' || !behindCr_) ++line_;
  behindCr_ = end == '\r';
}

void HexReader::HoldLine(std::string_view part) {
  const size_t kept = HeldLine().size();
  part.copy(held_.data() + kept, held_.size() - kept);
  heldLength_ += part.size();
}

std::string_view HexReader::HeldLine() const {
  return {held_.data(), static_cast<size_t>(std::min<uint64_t>(heldLength_, held_.size()))};
}

void HexReader::OnLine(std::string_view line) {
  Record record;
  if (Decode(line, record) == line.size()) return OnRecord(record, line);
  if (const std::optional<HexRule> rule = BrokenRule(line)) SetFault(*rule, line);
}

void HexReader::OnRecord(const Record& record, std::string_view line) {
  if (endSeen_ && record.Type() != kEndOfFile) return SetFault(HexRule::kNotBehindEnd, line);
  switch (record.Type()) {
    case kData:
      return Place(upper_ | record.Address(), record.Data());
    case kEndOfFile:
      endSeen_ = true;
      return;
    case kSegment:
      if (remarks_.segmentLine == 0) remarks_.segmentLine = line_;
      return;
    case kUpperAddress:
      return SetUpper(record.Data());
    default:
      return;
  }
}

// The first two bytes; one that is missing counts as 0.
void HexReader::SetUpper(std::span<const uint8_t> data) {
  if (data.size() != 2 && remarks_.oddUpperLine == 0) remarks_.oddUpperLine = line_;
  const auto byte = [&](size_t n) { return n < data.size() ? uint32_t{data[n]} : 0; };
  upper_ = byte(0) << 24 | byte(1) << 16;
}

// Addresses count on over the end of the 64 KiB of a type 04 record, and from the last address to 0.
void HexReader::Place(uint32_t address, std::span<const uint8_t> data) {
  const uint64_t room = kAddressEnd - address;
  if (data.size() > room) {
    Place(address, data.first(static_cast<size_t>(room)));
    return Place(0, data.subspan(static_cast<size_t>(room)));
  }
  if (data.empty()) return;
  if (address < nextAddress_) ascending_ = false;
  if (address != nextAddress_ || starts_.empty()) starts_.push_back({address, bytes_.size()});
  bytes_.insert(bytes_.end(), data.begin(), data.end());
  nextAddress_ = address + uint64_t{data.size()};
}

void HexReader::SetFault(HexRule rule, std::string_view line) {
  fault_ = HexFault{rule, line_, std::string(line)};
}

HexReading HexReader::Finish() {
  HexReading reading;
  reading.fault = std::move(fault_);
  reading.remarks = remarks_;
  if (reading.fault) return reading;
  reading.remarks.unreadLength = heldLength_;
  Record last;
  const bool endsUnread = Decode(HeldLine(), last) > 0 && last.Type() == kEndOfFile;
  reading.remarks.endMissing = !endSeen_ && !endsUnread;
  const size_t read = bytes_.size();
  reading.bytes = ascending_ ? HexBytes(std::move(starts_), std::move(bytes_)) : InOrder(starts_, bytes_);
  reading.remarks.replacedBytes = read - reading.bytes.size();
  return reading;
}

HexReading ReadHexText(std::string_view text) {
  HexReader reader;
  reader.Take(text);
  return reader.Finish();
}

}  // namespace veltra
