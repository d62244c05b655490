// Throughput of the receive state machine, beside a plain loop that takes the same bytes out of their frames
// with the whole input at hand: no state between bytes, no bound checks, no growth.
//
// Prints both in MB/s of wire bytes, the number of allocations once warm, and the ratio of the medians.
#include <benchmark/benchmark.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <new>
#include <random>
#include <vector>

#include "link/frame.h"

namespace {

std::atomic<size_t> allocations = 0;

// Frames of 8 to 264 bytes with an escape in one byte of ten.
std::vector<uint8_t> MakeLine(size_t size) {
  std::mt19937 random(1);
  std::vector<uint8_t> line;
  while (line.size() < size) {
    std::vector<uint8_t> message(8 + random() % 256);
    for (uint8_t& byte : message) {
      constexpr uint8_t kEscaped[] = {0x04, 0x05, 0x55};
      byte = random() % 10 ? static_cast<uint8_t>(0x60 + random() % 0x60) : kEscaped[random() % 3];
    }
    const std::vector<uint8_t> frame = veltra::EncodeFrame(message);
    line.insert(line.end(), frame.begin(), frame.end());
  }
  return line;
}

const std::vector<uint8_t>& Line() {
  static const std::vector<uint8_t> line = MakeLine(16 << 20);
  return line;
}

void Receiver(benchmark::State& state) {
  veltra::FrameReceiver receiver;
  size_t messages = 0;
  size_t allocated = 0;
  const auto run = [&] {
    for (const uint8_t byte : Line())
      if (receiver.OnByte(byte) == veltra::FrameReceiver::Outcome::kMessage) {
        benchmark::DoNotOptimize(receiver.Message().data());
        ++messages;
      }
  };
  run();
  for (auto _ : state) {
    const size_t before = allocations;
    run();
    allocated += allocations - before;
  }
  benchmark::DoNotOptimize(messages);
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(Line().size()));
  state.counters["allocations"] = static_cast<double>(allocated);
}

void PlainLoop(benchmark::State& state) {
  std::vector<uint8_t> message(1024);
  for (auto _ : state) {
    size_t messages = 0;
    uint8_t sum = 0;
    size_t length = 0;
    const uint8_t* at = Line().data();
    const uint8_t* const end = at + Line().size();
    while (at < end) {
      uint8_t byte = *at++;
      if (byte == veltra::kFrameHeader) {
        length = 0;
        sum = 0;
        continue;
      }
      if (byte == veltra::kFrameTrailer) {
        messages += sum == 0;
        benchmark::DoNotOptimize(message.data());
        continue;
      }
      if (byte == veltra::kFrameEscape) byte = *at++;
      message[length++] = byte;
      sum = static_cast<uint8_t>(sum + byte);
    }
    benchmark::DoNotOptimize(messages);
  }
  state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(Line().size()));
}

BENCHMARK(Receiver)->Repetitions(9)->ReportAggregatesOnly();
BENCHMARK(PlainLoop)->Repetitions(9)->ReportAggregatesOnly();

// The console's own lines, and the medians for the closing one.
class Medians : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs)
      if (run.aggregate_name == "median")
        bytesPerSecond_[run.run_name.function_name] = run.counters.at("bytes_per_second");
    ConsoleReporter::ReportRuns(runs);
  }
  [[nodiscard]] double Of(const std::string& name) const { return bytesPerSecond_.at(name) / 1e6; }

 private:
  std::map<std::string, double> bytesPerSecond_;
};

}  // namespace

[[gnu::noinline]] void* operator new(size_t size) {
  ++allocations;
  if (void* memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
  std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, size_t) noexcept {
  std::free(memory);
}

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  Medians reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  std::printf("receiver %.0f MB/s, plain loop %.0f MB/s, ratio %.2f (medians of 9)\n",
              reporter.Of("Receiver"), reporter.Of("PlainLoop"),
              reporter.Of("Receiver") / reporter.Of("PlainLoop"));
  return 0;
}
