// Throughput of the HEX reader on texts of 16 MB, beside a plain loop that turns the digits of the first text
// into bytes: no validation, no addresses, no comments.
//
// Prints MB/s of text for every kind of text, and the ratio of the medians for the first.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "firmware/hex_file.h"

namespace {

constexpr size_t kTextSize = 16 << 20;

void AppendRecord(std::string& text, uint8_t type, uint32_t address, const std::vector<uint8_t>& data) {
  constexpr char kDigits[] = "0123456789ABCDEF";
  uint8_t sum = 0;
  const auto append = [&](uint32_t byte) {
    text += kDigits[byte >> 4 & 15];
    text += kDigits[byte & 15];
    sum = static_cast<uint8_t>(sum + byte);
  };
  text += ':';
  append(static_cast<uint32_t>(data.size()));
  append(address >> 8 & 0xFF);
  append(address & 0xFF);
  append(type);
  for (const uint8_t byte : data) append(byte);
  append(static_cast<uint8_t>(-sum));
  text += '\n';
}

void AppendUpper(std::string& text, uint32_t address) {
  AppendRecord(text, 4, 0, {static_cast<uint8_t>(address >> 24), static_cast<uint8_t>(address >> 16)});
}

// Data records of one size at the addresses that `next` makes of the record's number, with a type 04 record
// where the upper half changes or, if asked for, in front of each.
std::string MakeText(size_t dataSize, const std::function<uint32_t(uint32_t)>& next,
                     bool uppersEverywhere = false) {
  std::mt19937 random(1);
  std::string text;
  uint32_t upper = 0;
  for (uint32_t n = 0; text.size() < kTextSize; ++n) {
    const uint32_t address = next(n);
    if (uppersEverywhere || address >> 16 != upper) AppendUpper(text, address);
    upper = address >> 16;
    std::vector<uint8_t> data(dataSize);
    for (uint8_t& byte : data) byte = static_cast<uint8_t>(random());
    AppendRecord(text, 0, address, data);
  }
  return text;
}

const std::string& Ascending() {
  static const std::string text = MakeText(16, [](uint32_t n) { return 16 * n; });
  return text;
}

void Read(benchmark::State& state, const std::string& text) {
  for (auto _ : state) {
    const veltra::HexReading reading = veltra::ReadHexText(text);
    if (reading.fault || reading.bytes.empty()) state.SkipWithError("refused");
    benchmark::DoNotOptimize(reading.bytes.size());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}

int Digit(char c) {
  return c <= '9' ? c - '0' : c - 'A' + 10;
}

void PlainLoop(benchmark::State& state) {
  const std::string& text = Ascending();
  for (auto _ : state) {
    std::vector<uint8_t> bytes;
    for (size_t at = 0; at < text.size(); ++at) {
      const int count = Digit(text[at + 1]) << 4 | Digit(text[at + 2]);
      const bool isData = text[at + 8] == '0';
      at += 9;
      for (int n = 0; n < count; ++n, at += 2)
        if (isData) bytes.push_back(static_cast<uint8_t>(Digit(text[at]) << 4 | Digit(text[at + 1])));
      at += 2;
    }
    benchmark::DoNotOptimize(bytes.data());
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}

// The console's own lines, and the medians for the closing one.
class Medians : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs)
      if (run.aggregate_name == "median")
        bytesPerSecond_[run.run_name.function_name] = run.counters.at("bytes_per_second");
    ConsoleReporter::ReportRuns(runs);
  }
  // 0 when it was filtered out.
  [[nodiscard]] double Of(const std::string& name) const {
    const auto found = bytesPerSecond_.find(name);
    return found == bytesPerSecond_.end() ? 0 : found->second / 1e6;
  }

 private:
  std::map<std::string, double> bytesPerSecond_;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  const uint32_t odd = 0x9E3779B1;  // times every number, a different address for each
  const std::vector<std::pair<const char*, std::string>> texts = {
      {"Ascending", Ascending()},
      {"LongRecords", MakeText(255, [](uint32_t n) { return 255 * n; })},
      {"Descending", MakeText(16, [](uint32_t n) { return (1 << 24) - 16 * n; })},
      {"Overlapping", MakeText(16, [](uint32_t n) { return 4 * (n ^ 1); })},
      {"SameAddress", MakeText(16, [](uint32_t) { return 0x1800; })},
      {"RepeatedUpper", MakeText(
                            16, [](uint32_t n) { return 16 * n; }, true)},
      {"OneByte", MakeText(1, [](uint32_t n) { return n; })},
      {"OneByteDescending", MakeText(1, [](uint32_t n) { return (1 << 24) - n; })},
      {"OneByteScattered", MakeText(1, [](uint32_t n) { return odd * n; })},
  };
  for (const auto& [name, text] : texts)
    benchmark::RegisterBenchmark(name, [&text = text](benchmark::State& state) { Read(state, text); })
        ->Repetitions(9)
        ->ReportAggregatesOnly();
  benchmark::RegisterBenchmark("PlainLoop", PlainLoop)->Repetitions(9)->ReportAggregatesOnly();
  Medians reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  for (const auto& [name, text] : texts) std::printf("%-18s %5.0f MB/s\n", name, reporter.Of(name));
  std::printf("reader %.0f MB/s, plain loop %.0f MB/s, ratio %.2f (medians of 9)\n", reporter.Of("Ascending"),
              reporter.Of("PlainLoop"), reporter.Of("Ascending") / reporter.Of("PlainLoop"));
  return 0;
}
