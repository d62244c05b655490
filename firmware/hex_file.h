// Intel HEX files, a pure core: text in, bytes at their addresses out.
//
//   :LLAAAATTDD..DDCC   LL data bytes, 16-bit address, type, data, checksum; two hexadecimal digits for a
//                       byte
//   ;COMMENT            at least 11 characters, like every line
//
// Types: 00 places data, 01 ends the file (only comments and other ends may follow), 04 sets the upper half
// of the addresses that follow; 02, 03 and 05 are accepted and mean nothing. CR or LF ends a line, empty
// lines are skipped, and a last line without its end is not read.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace veltra {

struct HexByte {
  uint32_t address;
  uint8_t value;
  bool operator==(const HexByte&) const = default;
};

// Bytes at successive addresses.
struct HexRun {
  uint32_t address;  // of the first byte
  std::span<const uint8_t> bytes;
};

// A list of HexByte, ascending by address, one entry for an address. Kept as runs, each as long as it can be.
class HexBytes {
 public:
  struct Start {
    uint32_t address;
    size_t offset;  // of the run's first byte in the bytes of all runs; it ends where the next one starts
  };

  class Iterator {
   public:
    using iterator_category = std::forward_iterator_tag;
    using value_type = HexByte;
    using difference_type = ptrdiff_t;
    using pointer = const HexByte*;
    using reference = HexByte;

    Iterator() = default;
    Iterator(const HexBytes* list, size_t offset) : list_(list), offset_(offset) {}
    HexByte operator*() const {
      const Start& start = list_->starts_[run_];
      return {static_cast<uint32_t>(start.address + (offset_ - start.offset)), list_->bytes_[offset_]};
    }
    Iterator& operator++() {
      ++offset_;
      if (run_ + 1 < list_->starts_.size() && offset_ == list_->starts_[run_ + 1].offset) ++run_;
      return *this;
    }
    Iterator operator++(int) {
      Iterator before = *this;
      ++*this;
      return before;
    }
    bool operator==(const Iterator& other) const { return offset_ == other.offset_; }

   private:
    const HexBytes* list_ = nullptr;
    size_t run_ = 0;
    size_t offset_ = 0;
  };

  HexBytes() = default;
  // The runs must ascend, not touch each other and lie below 2^32.
  HexBytes(std::vector<Start> starts, std::vector<uint8_t> bytes)
      : starts_(std::move(starts)), bytes_(std::move(bytes)) {}

  [[nodiscard]] bool empty() const { return bytes_.empty(); }
  [[nodiscard]] size_t size() const { return bytes_.size(); }
  [[nodiscard]] Iterator begin() const { return {this, 0}; }
  [[nodiscard]] Iterator end() const { return {this, bytes_.size()}; }

  [[nodiscard]] size_t RunCount() const { return starts_.size(); }
  [[nodiscard]] HexRun Run(size_t n) const;

 private:
  std::vector<Start> starts_;
  std::vector<uint8_t> bytes_;
};

// The rules of a line, in the order in which they are tried.
enum class HexRule {
  kLongEnough,  // at least 11 characters
  kBeginning,   // ":" or ";"
  kDigits,      // hexadecimal digits after the ":"
  kLength,      // as many characters as the byte count says
  kType,        // 00 to 05
  kChecksum,    // all bytes of the record add up to 0 modulo 256
  kNotBehindEnd,
};

// The first line that breaks a rule.
struct HexFault {
  HexRule rule;
  uint64_t line;     // from 1, as editors count: CR, LF and CR LF end a line
  std::string text;  // of the line, no more than one character longer than the longest record
};

// "line 2 breaks the rule: the record type is 00 to 05"
std::string Describe(const HexFault& fault);

// What is accepted, though whoever made the file may have meant something else. Lines from 1, 0 when there is
// none.
struct HexRemarks {
  uint64_t segmentLine = 0;    // the first record of type 02, whose segment is not added to any address
  uint64_t oddUpperLine = 0;   // the first record of type 04 without exactly two data bytes
  uint64_t unreadLength = 0;   // characters of a last line that has no end
  uint64_t replacedBytes = 0;  // bytes that a later record gave another time
  bool endMissing = false;     // no record of type 01, not even as a last line that has no end
};

struct HexReading {
  HexBytes bytes;  // empty when there is a fault
  std::optional<HexFault> fault;
  HexRemarks remarks;
};

// Takes the text in pieces of any size. Time and memory grow in proportion to the text, whatever it holds:
// bytes are kept in the order of the file and put in order at the end, when they are not.
class HexReader {
 public:
  // False when a line is at fault: what follows is not looked at.
  bool Take(std::string_view text);
  // Once, after the last piece.
  HexReading Finish();

 private:
  // A longer line is no record, so that no more than one character above that needs to be kept of any line.
  static constexpr size_t kLongestRecord = 2 * 255 + 11;

  struct Record;
  static size_t Decode(std::string_view text, Record& record);
  static std::optional<HexRule> BrokenRule(std::string_view line);

  void PassLineEnd(char end);
  void HoldLine(std::string_view part);
  [[nodiscard]] std::string_view HeldLine() const;
  void OnLine(std::string_view line);
  void OnRecord(const Record& record, std::string_view line);
  void SetUpper(std::span<const uint8_t> data);
  void Place(uint32_t address, std::span<const uint8_t> data);
  void SetFault(HexRule rule, std::string_view line);

  std::vector<HexBytes::Start> starts_;  // in the order of the file, like the bytes
  std::vector<uint8_t> bytes_;
  uint64_t nextAddress_ = 0;  // after the last byte
  bool ascending_ = true;     // so far every record lay after the ones before it
  uint32_t upper_ = 0;
  bool endSeen_ = false;

  uint64_t line_ = 1;
  bool behindCr_ = false;                           // an LF here belongs to the line end before it
  std::array<char, kLongestRecord + 1> held_ = {};  // the beginning of a line whose end has not come yet
  uint64_t heldLength_ = 0;                         // of that line, also where it is longer than what is kept

  std::optional<HexFault> fault_;
  HexRemarks remarks_;
};

// A whole text at once.
HexReading ReadHexText(std::string_view text);

}  // namespace veltra
