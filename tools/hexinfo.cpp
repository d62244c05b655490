// hexinfo: what the device tool makes of a HEX file, for the person who makes firmware.
//
// Says whether an update accepts the file and, if not, which line breaks which rule; whether it can succeed;
// what an update with it erases and writes, which bytes it leaves out, what the flash then holds, and how
// long it takes.
#include <cinttypes>
#include <cstdio>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "firmware/flash_image.h"
#include "firmware/hex_file.h"
#include "tools/command_line_program.h"
#include "tools/update_forecast.h"

namespace {

using namespace veltra;

constexpr int kSucceeds = 0;
constexpr int kFails = 1;
constexpr int kNoAnswer = 2;  // usage, or a file that cannot be read or written

constexpr char kUsage[] =
    "usage: hexinfo [--binary OUT] FILE\n"
    "\n"
    "Says whether an update of the controller with the HEX file FILE can succeed, what it would do and\n"
    "how long it would take; or which line of the file breaks which rule.\n"
    "\n"
    "  --binary OUT  also write the bytes of the file to OUT, from its lowest address to its highest, with\n"
    "                gaps as 0\n"
    "  --help        print this\n"
    "\n"
    "Exit code: 0 accepted, 1 refused or would fail, 2 wrong usage or a file that cannot be read or\n"
    "written.\n";

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

// ---- the report

std::string Counted(uint64_t count, const char* what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

void PrintRanges(const std::vector<Range>& ranges) {
  constexpr size_t kMostLines = 32;
  uint64_t unprinted = 0;
  for (size_t n = 0; n < ranges.size(); ++n) {
    const auto [begin, end] = ranges[n];
    if (n < kMostLines)
      std::printf("    0x%05" PRIX64 " to 0x%05" PRIX64 "  %s\n", begin, end - 1,
                  Counted(end - begin, "byte").c_str());
    else
      unprinted += end - begin;
  }
  if (unprinted > 0)
    std::printf("    and %s  %s\n", Counted(ranges.size() - kMostLines, "more range").c_str(),
                Counted(unprinted, "byte").c_str());
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
        ": segments (type 02) count for nothing, the data after it go to lower addresses; use type 04\n",
        remarks.segmentLine);
  if (remarks.oddUpperLine != 0)
    std::printf("  warning: line %" PRIu64 ": a type 04 record without exactly two data bytes\n",
                remarks.oddUpperLine);
  if (remarks.unreadLength != 0)
    std::printf("  warning: the last line has no line end, its %" PRIu64 " characters are not read\n",
                remarks.unreadLength);
  if (remarks.replacedBytes != 0)
    std::printf("  warning: bytes that later ones for the same addresses replace: %" PRIu64 "\n",
                remarks.replacedBytes);
  if (remarks.endMissing)
    std::printf("  warning: no end-of-file record (type 01) is read; is the file whole?\n");
}

void PrintForecast(const UpdateForecast& forecast) {
  std::printf("  %s to erase, %s to write and read back\n", Counted(forecast.pages, "page").c_str(),
              Counted(forecast.rows, "row").c_str());
  std::printf(
      "  %.1f s at %.0f baud (%.0f bytes on the line), and what the controller needs to erase and write\n",
      forecast.seconds, kBitsPerSecond, forecast.bytesOnLine);
  std::printf("  in the flash, CRC-32 %08" PRIX32 ":\n", forecast.checksum);
  PrintRanges(forecast.written);
  if (forecast.erasedOnly.empty()) return;
  std::printf("  erased with their pages, and not written:\n");
  PrintRanges(forecast.erasedOnly);
  if (forecast.erasesReservedRow)
    std::printf("  warning: among them is row 0x%05" PRIX32 ", which no update writes\n", kReservedFlashRow);
}

void PrintUnverifiable(const std::vector<HexByte>& bytes) {
  if (bytes.empty()) return;
  std::printf("  an update with it ends with error -103: fourth bytes of instructions read back as 00\n");
  std::printf("    0x%05" PRIX32 " is %02X", bytes.front().address, bytes.front().value);
  if (bytes.size() > 1) std::printf(", and %zu more are not 00", bytes.size() - 1);
  std::printf("\n");
}

const char* VerdictOf(const UpdateForecast& forecast) {
  if (!forecast.starts) return "refused";
  return forecast.unverifiable.empty() ? "accepted" : "would fail";
}

// Prints the report; whether an update succeeds, as far as the file tells.
bool Report(const std::string& name, const HexReading& reading) {
  const UpdateForecast forecast = Foresee(reading.bytes);
  std::printf("%s: %s\n", VerdictOf(forecast), name.c_str());
  PrintUnverifiable(forecast.unverifiable);
  if (reading.fault) {
    PrintFault(*reading.fault);
  } else if (reading.bytes.empty()) {
    std::printf("  no data\n");
  } else {
    std::printf("  %s in %s\n", Counted(reading.bytes.size(), "byte").c_str(),
                Counted(reading.bytes.RunCount(), "range").c_str());
    if (!forecast.starts) std::printf("  no byte lies where an update writes\n");
  }
  if (forecast.starts) PrintForecast(forecast);
  if (!forecast.outside.empty()) {
    std::printf("  outside the programmable window, not written:\n");
    PrintRanges(forecast.outside);
  }
  if (2 * forecast.outsideBytes > reading.bytes.size())
    std::printf(
        "  warning: most of it lies outside the programmable window; was it linked for this bootloader?\n");
  PrintRemarks(reading.remarks);
  return forecast.starts && forecast.unverifiable.empty();
}

int Fail(const char* what, const std::string& path) {
  std::fprintf(stderr, "hexinfo: cannot %s %s\n", what, path.c_str());
  return kNoAnswer;
}

int Run(const Options& options) {
  const std::optional<HexReading> reading = ReadFile(options.file);
  if (!reading) return Fail("read", options.file);
  const bool succeeds = Report(options.file, *reading);
  if (!options.binary.empty() && !reading->bytes.empty() && !WriteBinary(options.binary, reading->bytes))
    return Fail("write", options.binary);
  return succeeds ? kSucceeds : kFails;
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
