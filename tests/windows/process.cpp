#include "tests/windows/process.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <thread>

extern char** environ;

namespace windows_test {
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

// The shim is preloaded into Wine only: the test itself may run with a sanitizer, which suffers nothing in
// front of it.
std::vector<std::string> WineEnvironment() {
  std::vector<std::string> variables;
  for (char** variable = environ; *variable; ++variable) variables.emplace_back(*variable);
  if (const char* shim = std::getenv("VELTRA_SERIAL_SHIM"))
    variables.push_back(std::string("LD_PRELOAD=") + shim);
  return variables;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& text : texts) pointers.push_back(text.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

void SetProgramDirectory(std::string directory) {
  programDirectory = std::move(directory);
}

std::string ProgramPath(const std::string& name) {
  return programDirectory + "/" + name;
}

WineProcess::WineProcess(const std::string& program, const std::vector<std::string>& arguments) {
  if (!std::filesystem::exists(ProgramPath(program))) Fail(ProgramPath(program) + " is missing");
  Pipe input = MakePipe();
  Pipe output = MakePipe();
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, input.read.Get(), STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, output.write.Get(), STDOUT_FILENO);
  posix_spawn_file_actions_addchdir_np(&actions, programDirectory.c_str());  // as a shortcut starts it

  std::vector<std::string> command = {"wine", ProgramPath(program)};
  command.insert(command.end(), arguments.begin(), arguments.end());
  std::vector<std::string> environment = WineEnvironment();
  const int error =
      posix_spawnp(&pid_, "wine", &actions, nullptr, Pointers(command).data(), Pointers(environment).data());
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) Fail(program + ": " + std::strerror(error));
  input_ = std::move(input.write);
  output_ = std::move(output.read);
}

WineProcess::~WineProcess() {
  if (!IsRunning()) return;
  kill(pid_, SIGKILL);
  waitpid(pid_, nullptr, 0);
}

void WineProcess::WriteLine(const std::string& line) {
  const std::string text = line + "\n";
  if (write(input_.Get(), text.data(), text.size()) != static_cast<ssize_t>(text.size()))
    Fail(std::string("the program takes no input: ") + std::strerror(errno));
}

bool WineProcess::ReadMore(std::chrono::milliseconds limit) {
  pollfd source{output_.Get(), POLLIN, 0};
  if (poll(&source, 1, static_cast<int>(limit.count())) <= 0) return false;
  char buffer[4096];
  const ssize_t count = read(output_.Get(), buffer, sizeof buffer);
  if (count > 0) received_.append(buffer, static_cast<size_t>(count));
  return count > 0;
}

std::optional<std::string> WineProcess::TakeLine() {
  size_t end = 0;
  while ((end = received_.find('\n')) == received_.npos)
    if (!ReadMore(std::chrono::milliseconds(0))) return std::nullopt;
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

}  // namespace windows_test
