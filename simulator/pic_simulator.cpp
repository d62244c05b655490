// The controller in wall time: on a pseudo terminal that it makes, for a tool that runs beside it, or on a
// serial device that leads to a tool on another machine.
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "simulator/controller.h"
#include "simulator/controller_commands.h"
#include "simulator/file_descriptor.h"
#include "simulator/pseudo_terminal.h"
#include "simulator/words.h"
#include "tools/command_line_program.h"

namespace {

using simulator::Controller;
using simulator::Duration;
using simulator::FileDescriptor;
using simulator::Traffic;

constexpr char kUsage[] =
    "usage: pic_simulator [--link PATH] [--device PATH] [--trace FILE] [--silent-start]\n"
    "\n"
    "Plays the tablet's controller on a pseudo terminal, whose path it prints, until \"quit\" or a signal.\n"
    "\n"
    "  --link PATH      makes PATH a symbolic link to the pseudo terminal and removes it at the end\n"
    "  --device PATH    plays on this serial device instead, at 57600 baud\n"
    "  --trace FILE     writes every frame as one JSON object a line\n"
    "  --silent-start   says nothing until it is asked; otherwise it reports its start and its version\n"
    "  --help           prints this\n"
    "\n"
    "Commands on standard input, one a line; \"help\" lists them.\n";

struct Options {
  bool help = false;
  std::string link;
  std::string device;
  std::string trace;
  bool silentStart = false;
};

FileDescriptor OpenDevice(const std::string& path) {
  FileDescriptor device(open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK));
  if (device.Get() >= 0) simulator::MakeRaw(device.Get());
  return device;
}

class Clock {
 public:
  [[nodiscard]] Duration Now() const {
    return std::chrono::duration_cast<Duration>(std::chrono::steady_clock::now() - start_);
  }
  void After(Duration delay, std::function<void()> action) { due_.emplace(Now() + delay, std::move(action)); }
  void RunDue() {
    while (!due_.empty() && due_.begin()->first <= Now()) {
      const auto node = due_.extract(due_.begin());
      node.mapped()();
    }
  }
  // Time until the next action; nothing when there is none.
  [[nodiscard]] std::optional<Duration> UntilNext() const {
    if (due_.empty()) return std::nullopt;
    return std::max(Duration(0), due_.begin()->first - Now());
  }

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
  std::multimap<Duration, std::function<void()>> due_;
};

volatile sig_atomic_t stopRequested = 0;
void OnStopSignal(int) {
  stopRequested = 1;
}

std::string JsonText(std::string_view text) {
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') quoted += '\\';
    quoted += c;  // descriptions hold printable ASCII only
  }
  return quoted + '"';
}

void PrintTraffic(const Traffic& traffic, std::ostream& trace) {
  const bool fromTool = traffic.direction == Traffic::Direction::kFromTool;
  std::printf("%9s  %-13s  %s\n", simulator::FormatSeconds(traffic.at).c_str(),
              fromTool ? "tool ->" : "controller ->", Describe(traffic).c_str());
  std::fflush(stdout);
  trace << "{\"t_us\":" << traffic.at.count() << ",\"from\":" << (fromTool ? "\"tool\"" : "\"controller\"")
        << ",\"bytes\":" << JsonText(simulator::DescribeBytes(traffic.wire))
        << ",\"text\":" << JsonText(Describe(traffic)) << "}" << std::endl;
}

class Session {
 public:
  Session(int line, std::ostream& trace) : line_(line) {
    controller_.OnTraffic([&trace](const Traffic& traffic) { PrintTraffic(traffic, trace); });
  }

  Controller& Pic() { return controller_; }

  // Returns 0 after "quit" or a signal, 1 when the line broke.
  int Run() {
    sigset_t blocked;
    sigset_t unblocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGINT);
    sigaddset(&blocked, SIGTERM);
    sigprocmask(SIG_BLOCK, &blocked, &unblocked);  // they arrive in ppoll only
    struct sigaction action = {};
    action.sa_handler = OnStopSignal;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    while (!stopRequested && !quit_) {
      clock_.RunDue();
      pollfd sources[] = {{line_, POLLIN, 0}, {inputOpen_ ? STDIN_FILENO : -1, POLLIN, 0}};
      timespec timeout{};
      const std::optional<Duration> wait = clock_.UntilNext();
      if (wait) timeout = {wait->count() / 1'000'000, wait->count() % 1'000'000 * 1000};
      if (ppoll(sources, std::size(sources), wait ? &timeout : nullptr, &unblocked) < 0) continue;
      if (sources[1].revents) ReadCommands();
      if (sources[0].revents && !ReadLine()) return 1;
    }
    return 0;
  }

 private:
  bool ReadLine() {
    uint8_t bytes[4096];
    const ssize_t count = read(line_, bytes, sizeof bytes);
    if (count > 0) controller_.Receive({bytes, static_cast<size_t>(count)});
    if (count > 0 || (count < 0 && (errno == EAGAIN || errno == EINTR))) return true;
    std::fprintf(stderr, "pic_simulator: the line broke\n");
    return false;
  }

  void ReadCommands() {
    char text[4096];
    const ssize_t count = read(STDIN_FILENO, text, sizeof text);
    if (count <= 0) {
      inputOpen_ = false;  // the controller lives on without commands
      return;
    }
    input_.append(text, static_cast<size_t>(count));
    size_t end = 0;
    while ((end = input_.find('\n')) != input_.npos && !quit_) {
      RunCommand(input_.substr(0, end));
      input_.erase(0, end + 1);
    }
  }

  void RunCommand(const std::string& text) {
    std::vector<std::string> words;
    if (!simulator::SplitWords(text, words)) return Complain(text, "a quote is not closed");
    if (words.empty()) return;
    if (words[0] == "help") return PrintCommands();
    if (words[0] == "quit") {
      quit_ = true;
      return;
    }
    const simulator::ControllerCommand* command = simulator::FindControllerCommand(words[0]);
    if (!command) return Complain(text, "unknown command; \"help\" lists them");
    if (const simulator::Problem problem = command->run(controller_, words)) return Complain(text, *problem);
    if (const std::string_view why = simulator::WhySilent(controller_, words); !why.empty())
      Complain(text, std::string(why));
  }

  static void Complain(const std::string& text, const std::string& problem) {
    std::fprintf(stderr, "pic_simulator: \"%s\": %s\n", text.c_str(), problem.c_str());
  }

  static void PrintCommands() {
    for (const simulator::ControllerCommand& command : simulator::ControllerCommands())
      std::printf("  %-12s %-24s %s\n", std::string(command.name).c_str(),
                  std::string(command.arguments).c_str(), std::string(command.help).c_str());
    std::printf("  %-12s %-24s %s\n", "quit", "", "end");
    std::fflush(stdout);
  }

  void Send(std::span<const uint8_t> bytes) {
    while (!bytes.empty()) {
      const ssize_t count = write(line_, bytes.data(), bytes.size());
      if (count > 0) {
        bytes = bytes.subspan(static_cast<size_t>(count));
        continue;
      }
      if (errno == EINTR) continue;
      // As on a real line: what nobody takes is gone.
      std::fprintf(stderr, "pic_simulator: nobody reads the line, %zu bytes lost\n", bytes.size());
      return;
    }
  }

  int line_;
  Clock clock_;
  Controller controller_{{
      [this](std::span<const uint8_t> bytes) { Send(bytes); },
      [this](Duration delay, std::function<void()> action) { clock_.After(delay, std::move(action)); },
      [this] { return clock_.Now(); },
  }};
  std::string input_;
  bool inputOpen_ = true;
  bool quit_ = false;
};

std::optional<Options> ParseOptions(const std::vector<std::string>& arguments) {
  Options options;
  for (size_t n = 0; n < arguments.size(); ++n) {
    const std::string& name = arguments[n];
    if (name == "--help") {
      options.help = true;
      return options;
    }
    if (name == "--silent-start") {
      options.silentStart = true;
      continue;
    }
    std::string* value = name == "--link"     ? &options.link
                         : name == "--device" ? &options.device
                         : name == "--trace"  ? &options.trace
                                              : nullptr;
    if (!value || n + 1 == arguments.size()) return std::nullopt;
    *value = arguments[++n];
  }
  return options;
}

int Fail(const std::string& what) {
  std::fprintf(stderr, "pic_simulator: %s: %s\n", what.c_str(), std::strerror(errno));
  return 1;
}

int Run(const Options& options) {
  std::optional<simulator::PseudoTerminal> terminal;
  FileDescriptor other;  // of the terminal: kept open, so that the line stays up while no tool has it open
  FileDescriptor device;
  if (options.device.empty()) {
    terminal.emplace(options.link);
    other = FileDescriptor(open(terminal->Path().c_str(), O_RDWR | O_NOCTTY));
  } else {
    device = OpenDevice(options.device);
    if (device.Get() < 0) return Fail(options.device);
  }
  std::ofstream trace;
  if (!options.trace.empty()) {
    trace.open(options.trace);
    if (!trace) return Fail(options.trace);
  }
  std::printf("%s\n", terminal ? terminal->Path().c_str() : options.device.c_str());
  std::fflush(stdout);
  Session session(terminal ? terminal->Get() : device.Get(), trace);
  if (!options.silentStart) session.Pic().PowerUp();
  return session.Run();
}

}  // namespace

int main(int count, char** arguments) {
  return veltra::RunProgram<Options>({.name = "pic_simulator",
                                      .usage = kUsage,
                                      .wrongUsage = 2,
                                      .failed = 1,
                                      .parse = ParseOptions,
                                      .run = Run},
                                     count, arguments);
}
