// hexinfo: what the device tool makes of a HEX file, for the person who makes firmware.
//
// Says whether an update accepts the file and, if not, which line breaks which rule; what an update with it
// erases and writes, which bytes it leaves out, and how long it takes.
#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdio>
#include <fstream>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "firmware/boot_sequence.h"
#include "firmware/flash_image.h"
#include "firmware/hex_file.h"
#include "link/frame.h"
#include "tools/command_line_program.h"

namespace {

using namespace veltra;

constexpr int kAccepted = 0;
constexpr int kRefused = 1;
constexpr int kNoAnswer = 2;  // usage, or a file that cannot be read or written

constexpr char kUsage[] =
    "usage: hexinfo [--binary OUT] FILE\n"
    "\n"
    "Says whether the device tool accepts the HEX file FILE for an update of the controller, what the update "
    "would\n"
    "do and how long it would take; or which line of the file breaks which rule.\n"
    "\n"
    "  --binary OUT  also write the bytes of the file to OUT, from its lowest address to its highest, gaps "
    "as 0\n"
    "  --help        print this\n"
    "\n"
    "Exit code: 0 accepted, 1 refused, 2 wrong usage or a file that cannot be read or written.\n";

struct Options {
  bool help = false;
  std::string file;
  std::string binary;  // empty: none asked for
};

std::optional<Options> ParseOptions(const std::vector<std::string>& arguments) {
  Options options;
  for (size_t n = 0; n < arguments.size(); ++n) {
    const std::string& argument = arguments[n];
    if (argument == "--help") {
      options.help = true;
      return options;
    }
    if (argument == "--binary" && n + 1 < arguments.size() && options.binary.empty())
      options.binary = arguments[++n];
    else if (!argument.starts_with('-') && options.file.empty())
      options.file = argument;
    else
      return std::nullopt;
  }
  if (options.file.empty()) return std::nullopt;
  return options;
}

std::optional<HexReading> ReadFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  HexReader reader;
  constexpr size_t kPieceSize = size_t{256} * 1024;
  std::vector<char> piece(kPieceSize);
  bool going = file.is_open();
  if (!going) return std::nullopt;
  while (going) {
    file.read(piece.data(), static_cast<std::streamsize>(piece.size()));
    if (file.bad()) return std::nullopt;
    going = reader.Take({piece.data(), static_cast<size_t>(file.gcount())}) && file;
  }
  return reader.Finish();
}

// ---- the binary

bool WriteBinary(const std::string& path, const HexBytes& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  for (size_t n = 0; n < bytes.RunCount(); ++n) {
    const HexRun run = bytes.Run(n);
    file.seekp(static_cast<std::streamoff>(run.address) - static_cast<std::streamoff>(bytes.Run(0).address));
    file.write(reinterpret_cast<const char*>(run.bytes.data()),
               static_cast<std::streamsize>(run.bytes.size()));
  }
  file.close();
  return !file.fail();
}

// ---- how long an update takes

constexpr double kBitsPerSecond = 57600;
constexpr double kBitsPerByte = 10;       // start bit, 8 data bits, stop bit
constexpr double kPausePerFrame = 0.005;  // the tool's, behind the first byte of each of its frames

struct LineUse {
  double bytes = 0;  // in both directions
  double framesOfTool = 0;

  void Command(const std::vector<uint8_t>& message) {
    bytes += static_cast<double>(EncodeFrame(message).size());
    ++framesOfTool;
  }
  void Answer(const std::vector<uint8_t>& message) {
    bytes += static_cast<double>(EncodeFrame(message).size());
  }
  [[nodiscard]] double Seconds() const {
    return bytes * kBitsPerByte / kBitsPerSecond + framesOfTool * kPausePerFrame;
  }
};

std::vector<uint8_t> MessageOf(MessageType type, std::span<const uint8_t> content) {
  std::vector<uint8_t> message;
  message.reserve(content.size() + 1);
  message.push_back(static_cast<uint8_t>(type));
  message.insert(message.end(), content.begin(), content.end());
  return message;
}

// What the controller does with a request, as shortly as can be, and what the update makes of that.
BootEffects Answer(BootSequence& update, const SendRequest& request, LineUse& use) {
  if (request.type == MessageType::kText) {
    use.Answer(MessageOf(MessageType::kReply, std::array<uint8_t, 1>{}));
    return update.OnEnterBootloader();
  }
  if (request.type != MessageType::kReadMemory) {
    use.Answer(MessageOf(request.type, {}));
    return update.OnResponse(0, {});
  }
  const FlashRow& row = *update.fileImage.FindRow(update.verifyQueue.front());
  std::vector<uint8_t> content = request.content;  // the answer says again which row it is
  content.insert(content.end(), row.bytes.begin(), row.bytes.end());
  use.Answer(MessageOf(request.type, content));
  return update.OnResponse(row.address, row.bytes);
}

// The frames of the update that begins with these effects, every step of it answered at once.
LineUse LineUseOf(BootSequence& update, BootEffects effects) {
  LineUse use;
  SendRequest last{};
  for (bool sent = true; sent;) {
    sent = false;
    for (const BootEffect& effect : effects) {
      if (const auto* request = std::get_if<SendRequest>(&effect)) last = *request;
      const bool isRepeated = std::holds_alternative<RepeatRequest>(effect);
      if (!isRepeated && !std::holds_alternative<SendRequest>(effect)) continue;
      use.Command(MessageOf(last.type, last.content));
      sent = true;
    }
    if (sent) effects = Answer(update, last, use);
  }
  return use;
}

// ---- the report

struct Range {
  uint64_t begin;
  uint64_t end;  // behind the last address
};

// The parts of the runs that an update leaves out, ascending.
std::vector<Range> OutsideWindow(const HexBytes& bytes) {
  std::vector<Range> outside;
  for (size_t n = 0; n < bytes.RunCount(); ++n) {
    const HexRun run = bytes.Run(n);
    uint64_t begin = run.address;
    const uint64_t end = begin + run.bytes.size();
    for (const AddressRange& inside : kProgrammableWindow) {
      if (begin < inside.begin) outside.push_back({begin, std::min<uint64_t>(end, inside.begin)});
      begin = std::max<uint64_t>(begin, std::min<uint64_t>(end, inside.end));
      if (begin == end) break;
    }
    if (begin < end) outside.push_back({begin, end});
  }
  return outside;
}

void PrintRanges(const std::vector<Range>& ranges) {
  constexpr size_t kMostLines = 32;
  uint64_t unprinted = 0;
  for (size_t n = 0; n < ranges.size(); ++n) {
    const auto [begin, end] = ranges[n];
    if (n < kMostLines)
      std::printf("    0x%05" PRIX64 " to 0x%05" PRIX64 "  %" PRIu64 " bytes\n", begin, end - 1, end - begin);
    else
      unprinted += end - begin;
  }
  if (unprinted > 0)
    std::printf("    and %zu more ranges  %" PRIu64 " bytes\n", ranges.size() - kMostLines, unprinted);
}

// What a terminal can show of a line.
std::string Printable(std::string_view line) {
  constexpr size_t kMostCharacters = 100;
  std::string printable;
  for (const char c : line.substr(0, kMostCharacters)) {
    char escaped[5];
    std::snprintf(escaped, sizeof(escaped), c < ' ' || c > '~' ? "\\x%02X" : "%c", static_cast<uint8_t>(c));
    printable += escaped;
  }
  if (line.size() > kMostCharacters) printable += "...";
  return printable;
}

void PrintFault(const HexFault& fault) {
  std::printf("  %s\n    %s\n", Describe(fault).c_str(), Printable(fault.text).c_str());
}

void PrintRemarks(const HexRemarks& remarks) {
  if (remarks.segmentLine != 0)
    std::printf(
        "  warning: line %" PRIu64
        ": segments (type 02) count for nothing, the data behind it go to lower addresses; use type 04\n",
        remarks.segmentLine);
  if (remarks.oddUpperLine != 0)
    std::printf("  warning: line %" PRIu64 ": a type 04 record without exactly two data bytes\n",
                remarks.oddUpperLine);
  if (remarks.unreadLength != 0)
    std::printf("  warning: the last line has no line end, its %" PRIu64 " characters are not read\n",
                remarks.unreadLength);
  if (remarks.replacedBytes != 0)
    std::printf("  warning: %" PRIu64 " bytes are replaced by later ones for the same addresses\n",
                remarks.replacedBytes);
}

void PrintUpdate(BootSequence& update, const BootEffects& begin) {
  const size_t pages = update.eraseQueue.size();
  const size_t rows = update.writeQueue.size();
  const LineUse use = LineUseOf(update, begin);
  std::printf("  %zu pages to erase, %zu rows to write and read back\n", pages, rows);
  std::printf(
      "  %.1f s at %.0f baud (%.0f bytes on the line), and what the controller needs to erase and write\n",
      use.Seconds(), kBitsPerSecond, use.bytes);
}

// Prints the report; whether an update accepts the file.
bool Report(const std::string& name, const HexReading& reading) {
  BootSequence update;
  const BootEffects begin = update.Start(reading.bytes);
  const bool accepted = !begin.empty();
  std::printf("%s: %s\n", accepted ? "accepted" : "refused", name.c_str());
  if (reading.fault) {
    PrintFault(*reading.fault);
  } else if (reading.bytes.empty()) {
    std::printf("  no data\n");
  } else {
    std::printf("  %zu bytes in %zu ranges\n", reading.bytes.size(), reading.bytes.RunCount());
    if (!accepted) std::printf("  no byte lies where an update writes\n");
  }
  if (accepted) PrintUpdate(update, begin);
  if (const std::vector<Range> outside = OutsideWindow(reading.bytes); !outside.empty()) {
    std::printf("  outside the programmable window, not written:\n");
    PrintRanges(outside);
  }
  PrintRemarks(reading.remarks);
  return accepted;
}

int Fail(const char* what, const std::string& path) {
  std::fprintf(stderr, "hexinfo: cannot %s %s\n", what, path.c_str());
  return kNoAnswer;
}

int Run(const Options& options) {
  const std::optional<HexReading> reading = ReadFile(options.file);
  if (!reading) return Fail("read", options.file);
  const bool accepted = Report(options.file, *reading);
  if (!options.binary.empty() && !reading->bytes.empty() && !WriteBinary(options.binary, reading->bytes))
    return Fail("write", options.binary);
  return accepted ? kAccepted : kRefused;
}

}  // namespace

int main(int argc, char** argv) {
  return RunProgram<Options>({.name = "hexinfo",
                              .usage = kUsage,
                              .wrongUsage = kNoAnswer,
                              .failed = kNoAnswer,
                              .parse = ParseOptions,
                              .run = Run},
                             argc, argv);
}
