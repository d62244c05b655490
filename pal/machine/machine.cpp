#include "pal/machine/machine.h"

#include <algorithm>

#include "pal/machine/state.h"

namespace pal {
namespace {

constexpr int kShowDefault = 10;  // SW_SHOWDEFAULT

Machine* currentMachine = nullptr;

// The command line after the program's name, as the entry gets it.
std::u16string ArgumentsOf(std::u16string_view commandLine) {
  const bool quoted = commandLine.starts_with(u'"');
  size_t end = commandLine.find(quoted ? u'"' : u' ', quoted ? 1 : 0);
  if (quoted && end != std::u16string_view::npos) ++end;
  const size_t start = commandLine.find_first_not_of(u' ', std::min(end, commandLine.size()));
  return std::u16string(commandLine.substr(std::min(start, commandLine.size())));
}

}  // namespace

Machine& CurrentMachine() {
  if (!currentMachine) Die("there is no machine");
  return *currentMachine;
}

Machine::Machine(Clock kind)
    : state_(std::make_unique<State>(kind)),
      clock(state_->clock),
      desktop(state_->desktop),
      boxes(state_->boxes),
      menus(state_->menus),
      tray(state_->tray),
      disk(state_->disk),
      registry(state_->registry),
      resources(state_->resources),
      modules(state_->modules),
      serial(state_->serial),
      playback(state_->playback),
      system(state_->system) {
  currentMachine = this;
}

Machine::~Machine() {
  {
    const MachineLock lock(state_->mutex);
    state_->scheduler.StopEvents();
    state_->scheduler.EndProgram();
  }
  currentMachine = nullptr;
}

void Machine::StartProgram(EntryPoint entry, std::u16string commandLine) {
  const MachineLock lock(state_->mutex);
  state_->commandLine = commandLine;
  state_->Emit(ProgramStarted{std::move(commandLine)});
  state_->scheduler.Start(
      [entry, arguments = ArgumentsOf(state_->commandLine)]() mutable {
        return static_cast<DWORD>(entry(ProgramInstance(), nullptr, arguments.data(), kShowDefault));
      },
      true);
}

void Machine::StartProgram(std::function<int()> entry) {
  const MachineLock lock(state_->mutex);
  state_->commandLine = std::u16string(u"\"") + std::u16string(Disk::kProgramFile) + u"\"";
  state_->Emit(ProgramStarted{state_->commandLine});
  state_->scheduler.Start([entry = std::move(entry)] { return static_cast<DWORD>(entry()); }, true);
}

std::optional<int> Machine::ExitCode() const {
  const MachineLock lock(state_->mutex);
  const Thread* main = state_->scheduler.Main();
  if (!main || !main->ended) return std::nullopt;
  return static_cast<int>(main->exitCode);
}

int Machine::CountOpen(std::string_view kind) const {
  const MachineLock lock(state_->mutex);
  if (kind == "thread") return state_->scheduler.RunningSecondaryThreads();
  if (kind == "window") return state_->desktop.CountOfProgram();
  if (kind == "menu") return state_->menus.Count();
  if (kind == "icon") return state_->pictures.CountLoaded();
  if (kind == "com object") return static_cast<int>(state_->comObjects.size());
  if (kind == "brush") return static_cast<int>(state_->drawing.brushes.size());
  if (kind != "timer") return state_->handles.Count(kind);
  size_t timers = 0;
  for (const std::shared_ptr<Thread>& thread : state_->scheduler.Threads())
    timers += thread->queue.TimerCount();
  return static_cast<int>(timers);
}

size_t Machine::QueuedMessages() const {
  const MachineLock lock(state_->mutex);
  const Thread* main = state_->scheduler.Main();
  return main ? main->queue.PostedCount() : 0;
}

void Machine::Fail(std::string function, int times, DWORD lastError, int skip) {
  const MachineLock lock(state_->mutex);
  state_->failures.Arm(std::move(function), times, lastError, skip);
}

void Machine::FailNoMore() {
  const MachineLock lock(state_->mutex);
  state_->failures.Disarm();
}

const std::vector<Effect>& Machine::Effects() const {
  return state_->effects;
}

void Machine::ForgetEffects() {
  const MachineLock lock(state_->mutex);
  state_->effects.clear();
}

void Machine::OnEffect(std::function<void(const Effect&)> listener) {
  const MachineLock lock(state_->mutex);
  state_->effectListener = std::move(listener);
}

void Machine::Emit(EffectDetail detail) {
  const MachineLock lock(state_->mutex);
  state_->Emit(std::move(detail));
}

}  // namespace pal
