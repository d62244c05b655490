// The one lock of the machine. Every call of the API holds it while it works; what runs outside code (window
// procedures, timer callbacks, devices, the person) lets go of it. A thread may take it again: a listener of
// effects is called inside and may ask the machine things.
#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "pal/machine/die.h"

namespace pal {

class MachineMutex {
 public:
  void lock() {
    const std::thread::id self = std::this_thread::get_id();
    if (owner_.load(std::memory_order_relaxed) == self) {
      ++depth_;
      return;
    }
    mutex_.lock();
    owner_.store(self, std::memory_order_relaxed);
    depth_ = 1;
  }

  void unlock() {
    if (--depth_ > 0) return;
    owner_.store({}, std::memory_order_relaxed);
    mutex_.unlock();
  }

  // Lets go of the lock, waits for a notification of `wake`, or until `when`, and takes it back.
  void Wait(std::condition_variable& wake) {
    std::unique_lock<std::mutex> lock = Release();
    wake.wait(lock);
    Retake(lock);
  }
  void WaitUntil(std::condition_variable& wake, std::chrono::steady_clock::time_point when) {
    std::unique_lock<std::mutex> lock = Release();
    wake.wait_until(lock, when);
    Retake(lock);
  }

  // The lock let go while outside code runs.
  class Open {
   public:
    explicit Open(MachineMutex& mutex) : mutex_(mutex) {
      if (mutex_.depth_ != 1) Die("outside code or a wait inside another call of the machine");
      mutex_.unlock();
    }
    ~Open() { mutex_.lock(); }
    Open(const Open&) = delete;
    Open& operator=(const Open&) = delete;

   private:
    MachineMutex& mutex_;
  };

 private:
  std::unique_lock<std::mutex> Release() {
    if (depth_ != 1) Die("a wait inside another call of the machine");
    owner_.store({}, std::memory_order_relaxed);
    return {mutex_, std::adopt_lock};
  }
  void Retake(std::unique_lock<std::mutex>& lock) {
    lock.release();
    owner_.store(std::this_thread::get_id(), std::memory_order_relaxed);
    depth_ = 1;
  }

  std::mutex mutex_;
  std::atomic<std::thread::id> owner_{};
  int depth_ = 0;  // of the owner
};

using MachineLock = std::lock_guard<MachineMutex>;

}  // namespace pal
