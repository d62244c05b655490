#include "pal/kernel/scheduler.h"

#include <poll.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace pal {
namespace {

thread_local Thread* currentThread = nullptr;

// How long a program may take, in the host's time, to return from its waits when it is ended.
constexpr std::chrono::seconds kEndPatience(10);

const std::function<bool()> kAlways = [] { return true; };

}  // namespace

Scheduler::Scheduler(Clock clock, MachineMutex& mutex, EndActions actions)
    : clock_(clock), mutex_(mutex), actions_(std::move(actions)) {
  if (!IsVirtual()) hardware_ = std::thread([this] { RunHardware(); });
}

Scheduler::~Scheduler() {
  if (hardware_.joinable()) Die("the machine's events were not stopped");
}

Time Scheduler::Now() const {
  if (IsVirtual()) return Time(now_.load(std::memory_order_relaxed));
  return std::chrono::duration_cast<Time>(std::chrono::steady_clock::now() - hostStart_);
}

void Scheduler::At(Time when, std::function<void()> event) {
  const bool isNext = events_.empty() || when < events_.begin()->first;
  events_.emplace(std::max(when, Time(0)), std::move(event));
  if (isNext && !IsVirtual()) hardwareWake_.notify_one();
}

// Only those are woken that can go on: a wake-up costs more than asking.
void Scheduler::Notify() {
  if (IsVirtual()) return;
  for (const std::shared_ptr<Thread>& thread : threads_) {
    if (!thread->condition || thread->woken || !CanGoOn(*thread)) continue;
    thread->woken = true;
    if (thread->descriptor >= 0) {
      thread->wakeDescriptor.Raise();
    } else {
      thread->wake.notify_one();
    }
  }
}

void Scheduler::NotifyOutside() {
  if (outsideWaits_) outsideWake_.notify_all();
}

// ---- the program's threads ----------------------------------------------------------------------------------

Thread* Scheduler::Current() {
  return currentThread;
}

std::shared_ptr<Thread> Scheduler::Start(std::function<DWORD()> body, bool isMain) {
  JoinEnded();
  if (isMain) {
    if (main_ && !main_->ended) Die("a program is started while another one runs");
    ending_ = false;
  }
  auto thread = std::make_shared<Thread>();
  thread->isMain = isMain;
  thread->body = std::move(body);
  thread->condition = &kAlways;
  if (isMain) main_ = thread;
  threads_.push_back(thread);
  thread->host = std::thread([this, thread] { Body(*thread); });
  return thread;
}

void Scheduler::Body(Thread& thread) {
  currentThread = &thread;
  {
    const MachineLock lock(mutex_);
    if (IsVirtual()) AwaitTurn(thread);
    thread.condition = nullptr;
  }
  const DWORD result = thread.body();
  const MachineLock lock(mutex_);
  actions_.threadEnds(thread);
  thread.exitCode = result;
  if (thread.isMain) EndMain(thread);
  thread.ended = true;
  Notify();
  NotifyOutside();
  if (!IsVirtual()) return;
  running_ = nullptr;
  outsideWake_.notify_all();
}

// When the entry returns, Windows ends the process and with it the other threads wherever they are. Here they
// come back from their waits and return.
void Scheduler::EndMain(Thread& self) {
  ending_ = true;
  endBy_ = std::chrono::steady_clock::now() + kEndPatience;
  Notify();
  const std::function<bool()> othersEnded = [this] { return !OthersRun(); };
  self.endsWithProgram = false;
  const std::optional<Time> limit = IsVirtual() ? std::nullopt : std::optional(Now() + kEndPatience);
  if (Wait(othersEnded, limit) != Waited::kHolds) Die("a thread of the program does not end");
  JoinEnded();
  actions_.programEnded(static_cast<int>(self.exitCode));
}

bool Scheduler::OthersRun() const {
  return RunningSecondaryThreads() > 0;
}

int Scheduler::RunningSecondaryThreads() const {
  return static_cast<int>(
      std::count_if(threads_.begin(), threads_.end(),
                    [](const std::shared_ptr<Thread>& thread) { return !thread->isMain && !thread->ended; }));
}

// An ended thread does nothing more that needs the lock.
void Scheduler::JoinEnded() {
  std::erase_if(threads_, [](const std::shared_ptr<Thread>& thread) {
    if (!thread->ended) return false;
    thread->host.join();
    return true;
  });
}

Waited Scheduler::Wait(const std::function<bool()>& condition, std::optional<Time> deadline, int descriptor) {
  if (condition()) return Waited::kHolds;
  Thread* self = Current();
  if (!self) Die("a call that waits, outside the program's threads");
  self->condition = &condition;
  self->deadline = deadline;
  self->descriptor = descriptor;
  NotifyOutside();
  const Waited result = IsVirtual() ? WaitVirtual(*self) : WaitWall(*self);
  self->condition = nullptr;
  self->descriptor = -1;
  return result;
}

bool Scheduler::CanGoOn(const Thread& thread) const {
  if (thread.ended || !thread.condition) return false;
  if (ending_ && thread.endsWithProgram) return true;
  return (thread.deadline && *thread.deadline <= Now()) || (*thread.condition)();
}

// ---- virtual time -------------------------------------------------------------------------------------------

Waited Scheduler::WaitVirtual(Thread& self) {
  if (self.descriptor >= 0) Die("a device of the host and virtual time");
  running_ = nullptr;
  outsideWake_.notify_all();
  AwaitTurn(self);
  if ((*self.condition)()) return Waited::kHolds;
  if (self.deadline && *self.deadline <= Now()) return Waited::kTimedOut;
  return Waited::kProgramEnds;
}

void Scheduler::AwaitTurn(Thread& self) {
  while (running_ != &self) mutex_.Wait(self.wake);
}

bool Scheduler::Run(Time target, const std::function<bool()>& done) {
  if (Current() || runsEvent_) Die("the clock is moved by the outside, not by the program or an event");
  return IsVirtual() ? RunVirtual(target, done) : RunWall(target, done);
}

bool Scheduler::RunVirtual(Time target, const std::function<bool()>& done) {
  constexpr int kMostStepsAtOneTime = 1'000'000;
  int steps = 0;
  const auto isDone = [&] {
    if (!done) return false;
    const MachineMutex::Open open(mutex_);
    return done();
  };
  for (;;) {
    if (isDone()) return true;
    if (++steps > kMostStepsAtOneTime) Die("the program lets no time pass");
    if (RunDueEvent()) continue;
    if (Thread* thread = NextRunnable()) {
      RunThread(*thread);
      continue;
    }
    const std::optional<Time> next = NextMoment();
    if (!next || *next > target) break;
    now_.store(next->count(), std::memory_order_relaxed);
    steps = 0;
  }
  now_.store(std::max(Now(), target).count(), std::memory_order_relaxed);
  return isDone();
}

bool Scheduler::RunDueEvent() {
  if (events_.empty() || events_.begin()->first > Now()) return false;
  const std::function<void()> event = std::move(events_.extract(events_.begin()).mapped());
  runsEvent_ = true;
  {
    const MachineMutex::Open open(mutex_);
    event();
  }
  runsEvent_ = false;
  return true;
}

// The main thread comes last, so that its helpers have taken what the hardware brought. While the program
// ends, each gets its turn: one of them may wait again and again for another.
Thread* Scheduler::NextRunnable() const {
  Thread* next = nullptr;
  for (const std::shared_ptr<Thread>& thread : threads_) {
    if (!CanGoOn(*thread)) continue;
    if (!next || (ending_ ? thread->lastRun < next->lastRun : next->isMain)) next = thread.get();
  }
  return next;
}

void Scheduler::RunThread(Thread& thread) {
  thread.lastRun = ++runs_;
  running_ = &thread;
  thread.wake.notify_one();
  while (running_) {
    if (!ending_) {
      mutex_.Wait(outsideWake_);
    } else {
      mutex_.WaitUntil(outsideWake_, endBy_);
      if (running_ && std::chrono::steady_clock::now() >= endBy_)
        Die("the program does not end: a thread waits for nothing and does not return");
    }
  }
  if (ending_ && std::chrono::steady_clock::now() >= endBy_ && !(main_->ended))
    Die("the program does not end: a thread waits again and again");
  if (!thread.isMain && thread.ended) JoinEnded();
}

std::optional<Time> Scheduler::NextMoment() const {
  std::optional<Time> next;
  if (!events_.empty()) next = events_.begin()->first;
  for (const std::shared_ptr<Thread>& thread : threads_)
    if (!thread->ended && thread->deadline && (!next || *thread->deadline < *next)) next = thread->deadline;
  return next;
}

// ---- wall time ----------------------------------------------------------------------------------------------

Waited Scheduler::WaitWall(Thread& self) {
  for (;;) {
    if ((*self.condition)()) return Waited::kHolds;
    if (ending_ && self.endsWithProgram) {
      const MachineMutex::Open open(mutex_);
      std::this_thread::yield();  // others end, too
      return Waited::kProgramEnds;
    }
    if (self.deadline && Now() >= *self.deadline) return Waited::kTimedOut;
    self.woken = false;
    if (self.descriptor >= 0) {
      if (Poll(self)) return Waited::kReadable;
    } else if (self.deadline) {
      mutex_.WaitUntil(self.wake, HostTime(*self.deadline));
    } else {
      mutex_.Wait(self.wake);
    }
  }
}

// Waits for the thread's descriptor or for being woken; true when the descriptor has something to say.
bool Scheduler::Poll(Thread& self) {
  std::array<pollfd, 2> descriptors = {
      {{self.descriptor, POLLIN, 0}, {self.wakeDescriptor.Get(), POLLIN, 0}}};
  timespec rest{};
  if (self.deadline) {
    const auto left = std::max(*self.deadline - Now(), Time(0));
    rest.tv_sec = left / std::chrono::seconds(1);
    rest.tv_nsec = std::chrono::nanoseconds(left % std::chrono::seconds(1)).count();
  }
  int result = 0;
  {
    const MachineMutex::Open open(mutex_);
    result = ppoll(descriptors.data(), descriptors.size(), self.deadline ? &rest : nullptr, nullptr);
  }
  if (result < 0 && errno != EINTR) Die("cannot wait for a device");
  if (descriptors[1].revents) self.wakeDescriptor.Lower();
  return result > 0 && descriptors[0].revents != 0;
}

bool Scheduler::RunWall(Time target, const std::function<bool()>& done) {
  bool isDone = done && done();
  while (!isDone && Now() < target) {
    outsideWaits_ = done != nullptr;
    mutex_.WaitUntil(outsideWake_, HostTime(target));
    outsideWaits_ = false;
    isDone = done && done();
  }
  return isDone;
}

void Scheduler::RunHardware() {
  const MachineLock lock(mutex_);
  while (!stopHardware_) {
    if (events_.empty()) {
      mutex_.Wait(hardwareWake_);
    } else if (const Time when = events_.begin()->first; when > Now()) {
      mutex_.WaitUntil(hardwareWake_, HostTime(when));
    } else {
      const std::function<void()> event = std::move(events_.extract(events_.begin()).mapped());
      {
        const MachineMutex::Open open(mutex_);
        event();
      }
      NotifyOutside();
    }
  }
}

// ---- the outside --------------------------------------------------------------------------------------------

void Scheduler::EndProgram() {
  if (!main_) return;
  if (!main_->ended) {
    ending_ = true;
    endBy_ = std::chrono::steady_clock::now() + kEndPatience;
    Notify();
  }
  while (!main_->ended) {
    if (IsVirtual()) {
      Thread* thread = NextRunnable();
      if (!thread) Die("the program does not end: its main thread waits for others");
      RunThread(*thread);
      continue;
    }
    outsideWaits_ = true;
    mutex_.WaitUntil(outsideWake_, endBy_);
    outsideWaits_ = false;
    if (!main_->ended && std::chrono::steady_clock::now() >= endBy_) Die("the program does not end");
  }
  JoinEnded();
}

void Scheduler::StopEvents() {
  events_.clear();
  if (!hardware_.joinable()) return;
  stopHardware_ = true;
  hardwareWake_.notify_one();
  const MachineMutex::Open open(mutex_);
  hardware_.join();
}

}  // namespace pal
