// The road of one press in real time: from the write of its last byte into a pty until the click is injected,
// beside a bare loop that reads a pty of its own and decodes the frame. Both take turns in one run.
//
// Prints how often an idle tool wakes up, the medians in microseconds, and their ratio.
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "link/frame.h"
#include "pal/machine/machine.h"

int WINAPI wWinMain(HINSTANCE, HINSTANCE, PWSTR, int);

namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr int kRounds = 2000;
constexpr std::chrono::seconds kPatience{5};

struct Pty {
  int master = -1;
  int slave = -1;
  std::string path;

  Pty() {
    char name[128] = {};
    termios raw = {};
    cfmakeraw(&raw);
    if (openpty(&master, &slave, name, &raw, nullptr) != 0) {
      std::perror("openpty");
      std::exit(2);
    }
    path = name;
  }
  ~Pty() {
    close(master);
    close(slave);
  }
  Pty(const Pty&) = delete;
  Pty& operator=(const Pty&) = delete;
};

std::vector<uint8_t> TextFrame(std::string_view text) {
  std::vector<uint8_t> message(1 + text.size(), 0x0A);
  std::copy(text.begin(), text.end(), message.begin() + 1);
  return veltra::EncodeFrame(message);
}

// When the other side was done with the frame; 0 until then.
class Arrival {
 public:
  void Note() { at_.store(Clock::now().time_since_epoch().count(), std::memory_order_release); }
  void Clear() { at_.store(0, std::memory_order_release); }
  // Sleeps between looks: a busy loop would take one of two cores from what is measured.
  Clock::time_point Await() const {
    const auto deadline = Clock::now() + kPatience;
    while (at_.load(std::memory_order_acquire) == 0) {
      if (Clock::now() > deadline) {
        std::fprintf(stderr, "nothing arrived\n");
        std::exit(1);
      }
      std::this_thread::sleep_for(200us);
    }
    return Clock::time_point(Clock::duration(at_.load(std::memory_order_acquire)));
  }

 private:
  std::atomic<Clock::rep> at_ = 0;
};

// Writes the frame and returns the microseconds until its arrival. The rest before it is the same for both
// sides: a processor that has been idle for longer takes longer to wake up.
double Measure(int line, const std::vector<uint8_t>& frame, Arrival& arrival) {
  constexpr std::chrono::milliseconds kRest{2};
  arrival.Clear();
  std::this_thread::sleep_for(kRest);
  const auto written = Clock::now();
  if (write(line, frame.data(), frame.size()) != static_cast<ssize_t>(frame.size())) std::exit(2);
  return std::chrono::duration<double, std::micro>(arrival.Await() - written).count();
}

void RunBareLoop(int line, const std::atomic<bool>& stop, Arrival& arrival) {
  veltra::FrameReceiver receiver;
  std::vector<uint8_t> buffer(512);
  pollfd waited = {line, POLLIN, 0};
  while (!stop) {
    if (poll(&waited, 1, 100) <= 0) continue;
    const ssize_t count = read(line, buffer.data(), buffer.size());
    for (ssize_t n = 0; n < count; ++n)
      if (receiver.OnByte(buffer[static_cast<size_t>(n)]) == veltra::FrameReceiver::Outcome::kMessage)
        arrival.Note();
  }
}

// How often the threads of this process but the calling one have gone to sleep so far, which is how often
// they woke.
long CountSleeps() {
  long sleeps = 0;
  for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task")) {
    if (thread.path().filename() == std::to_string(gettid())) continue;
    std::ifstream status(thread.path() / "status");
    for (std::string word; status >> word;)
      if (word == "voluntary_ctxt_switches:" && status >> word) sleeps += std::stol(word);
  }
  return sleeps;
}

double Median(std::vector<double> values) {
  std::nth_element(values.begin(), values.begin() + static_cast<ptrdiff_t>(values.size() / 2), values.end());
  return values[values.size() / 2];
}

}  // namespace

int main() {
  Pty toolLine;
  Pty bareLine;
  Arrival click;
  Arrival decoded;

  pal::Machine machine(pal::Clock::kWall);
  constexpr std::u16string_view kKey = u"SOFTWARE\\Veltra\\Sarvik5";
  machine.registry.SetDword(HKEY_CURRENT_USER, kKey, u"StartupDelay", 0);
  machine.registry.SetDword(HKEY_CURRENT_USER, kKey, u"Sw1CmdVal", static_cast<uint32_t>(-1));
  machine.serial.AttachTty(2, toolLine.path);
  machine.OnEffect([&](const pal::Effect& effect) {
    if (std::holds_alternative<pal::MouseInput>(effect.detail)) click.Note();
  });
  machine.StartProgram(wWinMain, u"\"veltratool.exe\" -s");

  machine.clock.Advance(1s);  // the tool has opened its port
  const long sleeps = CountSleeps();
  machine.clock.Advance(5s);
  const long wakes = CountSleeps() - sleeps;

  std::atomic<bool> stop = false;
  std::thread bareLoop([&] { RunBareLoop(bareLine.slave, stop, decoded); });

  const std::vector<uint8_t> make = TextFrame("Sw1Make");
  const std::vector<uint8_t> release = TextFrame("Sw1Break");
  std::vector<double> tool;
  std::vector<double> bare;
  for (int round = 0; round < kRounds; ++round) {
    const std::vector<uint8_t>& frame = round % 2 ? release : make;
    const bool toolFirst = round / 2 % 2 == 0;  // each side comes first as often
    if (toolFirst) tool.push_back(Measure(toolLine.master, frame, click));
    bare.push_back(Measure(bareLine.master, frame, decoded));
    if (!toolFirst) tool.push_back(Measure(toolLine.master, frame, click));
  }
  stop = true;
  bareLoop.join();

  std::printf("idle tool: %ld wake-ups in 5 s\n", wakes);
  std::printf("press to click: %.0f us, bare loop: %.0f us, ratio %.2f (medians of %d)\n", Median(tool),
              Median(bare), Median(tool) / Median(bare), kRounds);
  machine.desktop.Post(machine.desktop.ProgramWindow(u"VeltraInternal"), WM_CLOSE, 0, 0);
  machine.clock.AdvanceUntil([&] { return machine.ExitCode().has_value(); }, 10s);
  return 0;
}
