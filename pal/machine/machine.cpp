// The machine's outside: time, the program, failures, effects, ports and the desktop.
#include "pal/machine/machine.h"

#include <dbt.h>

#include <algorithm>

#include "pal/kernel/tick_count.h"
#include "pal/machine/state.h"

namespace pal {
namespace {

constexpr int kShowDefault = 10;  // SW_SHOWDEFAULT

Machine* currentMachine = nullptr;

// The command line behind the program's name, as the entry gets it.
std::u16string ArgumentsOf(std::u16string_view commandLine) {
  const bool quoted = commandLine.starts_with(u'"');
  size_t end = commandLine.find(quoted ? u'"' : u' ', quoted ? 1 : 0);
  if (quoted && end != std::u16string_view::npos) ++end;
  const size_t start = commandLine.find_first_not_of(u' ', std::min(end, commandLine.size()));
  return std::u16string(commandLine.substr(std::min(start, commandLine.size())));
}

// What lParam of a message from the outside points to. The program may handle it when the sender's memory is
// gone.
std::vector<uint8_t> CopyPointedTo(UINT message, LPARAM lParam) {
  if (message != WM_DEVICECHANGE || lParam == 0) return {};
  const auto* header = reinterpret_cast<const DEV_BROADCAST_HDR*>(lParam);
  const auto* bytes = reinterpret_cast<const uint8_t*>(header);
  return {bytes, bytes + header->dbch_size};
}

// Queues a message from the outside and waits for the answer; with no time to wait it only queues it.
std::optional<LRESULT> SendFromOutside(State& state, std::shared_ptr<SentMessage> sent, Time limit) {
  const Window* window = state.desktop.Find(sent->window);
  if (!window || !window->thread) return std::nullopt;
  window->thread->queue.Send(sent);
  state.scheduler.Notify();
  if (limit > Time(0)) state.scheduler.Run(state.scheduler.Now() + limit, [sent] { return sent->answered; });
  return sent->result;
}

// Copied data as the receiver sees it: the structure, and the payload right behind it.
std::vector<uint8_t> PackCopyData(uint64_t tag, std::span<const uint8_t> payload) {
  std::vector<uint8_t> packed(sizeof(COPYDATASTRUCT) + payload.size());
  uint8_t* bytes = packed.data() + sizeof(COPYDATASTRUCT);
  std::copy(payload.begin(), payload.end(), bytes);
  const COPYDATASTRUCT data{static_cast<ULONG_PTR>(tag), static_cast<DWORD>(payload.size()),
                            payload.empty() ? nullptr : bytes};
  std::copy_n(reinterpret_cast<const uint8_t*>(&data), sizeof(data), packed.data());
  return packed;
}

}  // namespace

Machine& CurrentMachine() {
  if (!currentMachine) Die("there is no machine");
  return *currentMachine;
}

Machine::Machine(Clock clock) : state_(std::make_unique<State>(clock)) {
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

// ---- time ---------------------------------------------------------------------------------------------------

Time Machine::Now() const {
  return state_->scheduler.Now();
}

void Machine::At(Time when, std::function<void()> event) {
  const MachineLock lock(state_->mutex);
  state_->scheduler.At(when, std::move(event));
}

void Machine::Advance(Time span) {
  const MachineLock lock(state_->mutex);
  state_->scheduler.Run(state_->scheduler.Now() + span, nullptr);
}

bool Machine::AdvanceUntil(const std::function<bool()>& condition, Time limit) {
  const MachineLock lock(state_->mutex);
  return state_->scheduler.Run(state_->scheduler.Now() + limit, condition);
}

void Machine::Do(const std::function<void()>& action) {
  const MachineLock lock(state_->mutex);
  state_->scheduler.Do(action);
}

void Machine::SetLocalTime(const SYSTEMTIME& start) {
  const MachineLock lock(state_->mutex);
  state_->localTimeAtStart = start;
}

// ---- the program --------------------------------------------------------------------------------------------

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
  state_->commandLine = std::u16string(u"\"") + std::u16string(kProgramFile) + u"\"";
  state_->Emit(ProgramStarted{state_->commandLine});
  state_->scheduler.Start([entry = std::move(entry)] { return static_cast<DWORD>(entry()); }, true);
}

std::optional<int> Machine::ExitCode() const {
  const MachineLock lock(state_->mutex);
  const Thread* main = state_->scheduler.Main();
  if (!main || !main->ended) return std::nullopt;
  return static_cast<int>(main->exitCode);
}

HWND Machine::ProgramWindow(std::u16string_view className) const {
  const MachineLock lock(state_->mutex);
  for (const HWND handle : state_->desktop.TopLevel()) {
    const Window* window = state_->desktop.Find(handle);
    if (window->thread && SameName(window->windowClass->name, className)) return handle;
  }
  return nullptr;
}

std::optional<LRESULT> Machine::Send(HWND window, UINT message, WPARAM wParam, LPARAM lParam, Time limit) {
  const MachineLock lock(state_->mutex);
  auto sent = std::make_shared<SentMessage>(
      SentMessage{window, message, wParam, lParam, CopyPointedTo(message, lParam)});
  if (!sent->copied.empty()) sent->lParam = reinterpret_cast<LPARAM>(sent->copied.data());
  return SendFromOutside(*state_, std::move(sent), limit);
}

std::optional<LRESULT> Machine::SendCopyData(HWND window, HWND sender, uint64_t tag,
                                             std::span<const uint8_t> payload, Time limit) {
  const MachineLock lock(state_->mutex);
  auto sent = std::make_shared<SentMessage>(
      SentMessage{window, WM_COPYDATA, reinterpret_cast<WPARAM>(sender), 0, PackCopyData(tag, payload)});
  sent->lParam = reinterpret_cast<LPARAM>(sent->copied.data());
  return SendFromOutside(*state_, std::move(sent), limit);
}

bool Machine::Post(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  const MachineLock lock(state_->mutex);
  const Window* found = state_->desktop.Find(window);
  if (!found || !found->thread) return false;
  std::vector<uint8_t> copy = CopyPointedTo(message, lParam);
  if (!copy.empty()) {
    lParam = reinterpret_cast<LPARAM>(copy.data());
    state_->postedCopies.push_back(std::move(copy));
  }
  const DWORD time = TickCount(state_->scheduler.Now());
  if (!found->thread->queue.Post({window, message, wParam, lParam, time, {0, 0}})) return false;
  state_->scheduler.Notify();
  return true;
}

int Machine::CountOpen(std::string_view kind) const {
  const MachineLock lock(state_->mutex);
  if (kind == "thread") return state_->scheduler.RunningSecondaryThreads();
  if (kind == "window") return state_->desktop.CountOfProgram();
  if (kind == "menu") return state_->menus.Count();
  if (kind == "icon") return state_->pictures.CountLoaded();
  if (kind == "com object") return static_cast<int>(state_->playback.objects.size());
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

// ---- failures and effects -----------------------------------------------------------------------------------

void Machine::Fail(std::string function, int times, DWORD lastError, int skip) {
  const MachineLock lock(state_->mutex);
  state_->failures.Arm(std::move(function), times, lastError, skip);
}

void Machine::SetExecutedProgramTime(Time time) {
  const MachineLock lock(state_->mutex);
  state_->executedProgramTime = time;
}

const std::vector<Effect>& Machine::Effects() const {
  return state_->effects;
}

void Machine::OnEffect(std::function<void(const Effect&)> listener) {
  const MachineLock lock(state_->mutex);
  state_->effectListener = std::move(listener);
}

void Machine::Emit(EffectDetail detail) {
  const MachineLock lock(state_->mutex);
  state_->Emit(std::move(detail));
}

// ---- serial ports -------------------------------------------------------------------------------------------

SerialPort& Machine::AddSerialPort(int number) {
  const MachineLock lock(state_->mutex);
  return state_->serialPorts.Add(*state_, number);
}

void Machine::AttachTty(int number, const std::filesystem::path& tty) {
  const MachineLock lock(state_->mutex);
  if (state_->scheduler.IsVirtual()) Die("a tty of the host needs wall time");
  state_->serialPorts.Add(*state_, number).UseTty(tty);
}

// ---- desktop ------------------------------------------------------------------------------------------------

HWND Machine::AddForeignWindow(std::u16string_view className, ForeignWindowHandler handler) {
  const MachineLock lock(state_->mutex);
  Window window;
  window.windowClass =
      std::make_shared<const WindowClass>(WindowClass{std::u16string(className), 0, nullptr, 0, {}});
  window.foreign = std::move(handler);
  return state_->desktop.Add(std::move(window)).handle;
}

void Machine::RemoveForeignWindow(HWND window) {
  const MachineLock lock(state_->mutex);
  const Window* found = state_->desktop.Find(window);
  if (!found || found->thread) Die("no such window of another program");
  state_->desktop.Remove(window);
  state_->scheduler.Notify();
}

void Machine::SetHung(HWND window, bool hung) {
  const MachineLock lock(state_->mutex);
  Window* found = state_->desktop.Find(window);
  if (!found || found->thread) Die("no such window of another program");
  found->hungSince = hung ? std::optional(state_->scheduler.Now()) : std::nullopt;
  state_->scheduler.Notify();
}

void Machine::AddForeignMutex(std::u16string_view name) {
  const MachineLock lock(state_->mutex);
  auto mutex = std::make_shared<Mutex>(Mutex{std::u16string(name)});
  state_->namedMutexes.push_back(mutex);
  state_->foreignMutexes.push_back(std::move(mutex));
}

std::vector<OpenMessageBox> Machine::OpenMessageBoxes() const {
  const MachineLock lock(state_->mutex);
  std::vector<OpenMessageBox> boxes;
  for (const auto& box : state_->boxes.open) boxes.push_back(box->shown);
  return boxes;
}

void Machine::AnswerMessageBox(int button) {
  const MachineLock lock(state_->mutex);
  if (state_->boxes.open.empty()) Die("no message box is open");
  AnswerBox(*state_, *state_->boxes.open.back(), button);
}

void Machine::AnswerMessageBoxesWith(std::optional<int> button) {
  const MachineLock lock(state_->mutex);
  state_->boxes.automaticAnswer = button;
}

}  // namespace pal
