// Time, events and the program's threads.
//
// With virtual time one thread runs at a time: the outside or one thread of the program. The outside, in
// Run(), is the one that hands on: it runs the events that are due, then lets each thread that can go on run
// until that waits again, the program's main thread last, and only then moves the clock to the next moment at
// which something is due. With wall time threads run as the host lets them, and events run on a thread of the
// machine.
//
// All functions but Now() are called with the machine's lock held.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

#include "pal/devices/wake_descriptor.h"
#include "pal/kernel/clock.h"
#include "pal/machine/effects.h"
#include "pal/machine/machine_mutex.h"
#include "pal/windows/message_queue.h"

namespace pal {

// A thread of the program.
struct Thread {
  bool isMain = false;
  std::thread host;
  std::function<DWORD()> body;
  bool ended = false;
  DWORD exitCode = 0;
  MessageQueue queue;
  bool handlesSent = false;  // what it is at work on was sent, and the sender waits

  // What it waits for, while it waits. The condition is asked by others and must change nothing.
  const std::function<bool()>* condition = nullptr;
  std::optional<Time> deadline;
  bool endsWithProgram = true;  // the end of the program ends the wait
  int descriptor = -1;          // wall time: a descriptor whose input ends the wait, too
  bool woken = false;           // wall time: was told to look at its condition
  uint64_t lastRun = 0;         // virtual time: the number of the run that it had last
  std::condition_variable wake;
  WakeDescriptor wakeDescriptor;  // takes the place of `wake` when the thread waits for a descriptor
};

enum class Waited { kHolds, kTimedOut, kReadable, kProgramEnds };

class Scheduler {
 public:
  struct EndActions {
    std::function<void(Thread&)> threadEnds;         // on the thread, whose handles and windows still exist
    std::function<void(int exitCode)> programEnded;  // the main thread returned and all others are gone
  };

  Scheduler(Clock clock, MachineMutex& mutex, EndActions actions);
  ~Scheduler();

  [[nodiscard]] bool IsVirtual() const { return clock_ == Clock::kVirtual; }
  [[nodiscard]] Time Now() const;

  void At(Time when, std::function<void()> event);
  // Something changed for which a thread of the program may wait.
  void Notify();
  // Something happened that the outside may look for.
  void NotifyOutside();

  // ---- the program's threads ----
  static Thread* Current();  // null on a thread that is not the program's
  std::shared_ptr<Thread> Start(std::function<DWORD()> body, bool isMain);
  // Waits on the calling thread until the condition holds, the clock reaches the deadline, the descriptor has
  // input or the program is being ended. Dies when the caller is no thread of the program.
  Waited Wait(const std::function<bool()>& condition, std::optional<Time> deadline, int descriptor = -1);
  [[nodiscard]] bool IsEnding() const { return ending_; }
  [[nodiscard]] const std::vector<std::shared_ptr<Thread>>& Threads() const { return threads_; }
  [[nodiscard]] Thread* Main() const { return main_.get(); }  // null before the first program
  [[nodiscard]] int RunningSecondaryThreads() const;

  // ---- the outside ----
  // Lets happen what is due up to `target`, or until `done` holds; returns whether it holds.
  bool Run(Time target, const std::function<bool()>& done);
  // Ends a program that still runs and waits for its threads. Dies when it does not end.
  void EndProgram();
  void StopEvents();

 private:
  void Body(Thread& thread);
  void EndMain(Thread& self);
  void JoinEnded();
  [[nodiscard]] bool OthersRun() const;

  bool RunVirtual(Time target, const std::function<bool()>& done);
  bool RunDueEvent();
  void RunThread(Thread& thread);
  [[nodiscard]] Thread* NextRunnable() const;
  [[nodiscard]] bool CanGoOn(const Thread& thread) const;
  [[nodiscard]] std::optional<Time> NextMoment() const;
  Waited WaitVirtual(Thread& self);
  void AwaitTurn(Thread& self);

  bool RunWall(Time target, const std::function<bool()>& done);
  Waited WaitWall(Thread& self);
  bool Poll(Thread& self);
  void RunHardware();
  [[nodiscard]] std::chrono::steady_clock::time_point HostTime(Time time) const { return hostStart_ + time; }

  const Clock clock_;
  MachineMutex& mutex_;
  const EndActions actions_;
  const std::chrono::steady_clock::time_point hostStart_ = std::chrono::steady_clock::now();
  std::atomic<int64_t> now_{0};  // virtual time, microseconds

  std::multimap<Time, std::function<void()>> events_;  // those of one time in the order of their arming
  std::vector<std::shared_ptr<Thread>> threads_;       // in the order of their start
  std::shared_ptr<Thread> main_;
  bool ending_ = false;
  std::chrono::steady_clock::time_point endBy_;  // ending: when patience with the program is over

  std::condition_variable outsideWake_;
  bool outsideWaits_ = false;
  Thread* running_ = nullptr;  // virtual time: who runs; null is the outside
  bool runsEvent_ = false;     // virtual time: the outside runs an event
  uint64_t runs_ = 0;          // virtual time: how often threads were let run

  std::thread hardware_;  // wall time: runs the events
  std::condition_variable hardwareWake_;
  bool stopHardware_ = false;
};

}  // namespace pal
