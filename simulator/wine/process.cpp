#include "simulator/wine/process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <thread>

namespace simulator {
namespace {

std::string programDirectory;

struct Pipe {
  FileDescriptor read;
  FileDescriptor write;
};

Pipe MakePipe() {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) Fail(std::string("pipe: ") + std::strerror(errno));
  return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

// In the new process, whose input and output are the pipes'. The shim is preloaded into Wine only: the test
// itself may run with a sanitizer, which suffers nothing in front of it.
[[noreturn]] void BecomeWine(const std::string& program, const std::vector<std::string>& arguments) {
  if (const char* shim = std::getenv("VELTRA_SERIAL_SHIM")) setenv("LD_PRELOAD", shim, 1);
  std::string wine = "wine";
  std::string path = std::filesystem::exists(ProgramPath(program)) ? ProgramPath(program) : program;
  std::vector<char*> command = {wine.data(), path.data()};
  for (const std::string& argument : arguments) command.push_back(const_cast<char*>(argument.c_str()));
  command.push_back(nullptr);
  if (chdir(programDirectory.c_str()) == 0) execvp("wine", command.data());  // there as a shortcut starts it
  _exit(127);
}

}  // namespace

void SetProgramDirectory(std::string directory) {
  programDirectory = std::move(directory);
}

std::string ProgramPath(const std::string& name) {
  return programDirectory + "/" + name;
}

WineProcess::WineProcess(const std::string& program, const std::vector<std::string>& arguments) {
  const bool isOurs = program.ends_with(".exe");
  if (isOurs && !std::filesystem::exists(ProgramPath(program))) Fail(ProgramPath(program) + " is missing");
  Pipe input = MakePipe();
  Pipe output = MakePipe();
  pid_ = fork();
  if (pid_ < 0) Fail(program + ": " + std::strerror(errno));
  if (pid_ == 0) {
    dup2(input.read.Get(), STDIN_FILENO);
    dup2(output.write.Get(), STDOUT_FILENO);
    BecomeWine(program, arguments);
  }
  input_ = std::move(input.write);
  output_ = std::move(output.read);
}

WineProcess::~WineProcess() {
  if (!IsRunning()) return;
  kill(pid_, SIGKILL);
  waitpid(pid_, nullptr, 0);
}

bool WineProcess::WriteLine(const std::string& line) {
  const std::string text = line + "\n";
  return write(input_.Get(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

bool WineProcess::ReadMore(Duration limit) {
  pollfd source{output_.Get(), POLLIN, 0};
  if (poll(&source, 1, static_cast<int>(limit / std::chrono::milliseconds(1))) <= 0) return false;
  char buffer[4096];
  const ssize_t count = read(output_.Get(), buffer, sizeof buffer);
  if (count > 0) received_.append(buffer, static_cast<size_t>(count));
  return count > 0;
}

std::optional<std::string> WineProcess::TakeLine() {
  size_t end = 0;
  while ((end = received_.find('\n')) == received_.npos)
    if (!ReadMore(Duration(0))) return std::nullopt;
  std::string line = received_.substr(0, end);
  received_.erase(0, end + 1);
  return line;
}

std::string WineProcess::ReadAll() {
  while (ReadMore(kPatience)) {
  }
  return std::move(received_);
}

bool WineProcess::IsRunning() {
  if (exitCode_ || pid_ < 0) return false;
  int status = 0;
  if (waitpid(pid_, &status, WNOHANG) != pid_) return true;
  exitCode_ = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  return false;
}

size_t WineProcess::ThreadCount() const {
  const std::filesystem::directory_iterator threads("/proc/" + std::to_string(pid_) + "/task");
  return static_cast<size_t>(std::distance(begin(threads), end(threads)));
}

int WineProcess::ExitCode() {
  const auto limit = std::chrono::steady_clock::now() + kPatience;
  while (IsRunning()) {
    if (std::chrono::steady_clock::now() > limit) Fail("the program does not end");
    std::this_thread::sleep_for(kPollPause);
  }
  return exitCode_.value();
}

}  // namespace simulator
