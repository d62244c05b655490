// Events, mutexes and threads as the program's handles know them.
#pragma once

#include <memory>
#include <string>

#include "pal/handles.h"
#include "pal/scheduler.h"

namespace pal {

class EventObject final : public Object {
 public:
  EventObject(bool manualReset, bool signaled) : manualReset_(manualReset), signaled_(signaled) {}

  [[nodiscard]] std::string_view Kind() const override { return "event"; }
  [[nodiscard]] bool IsWaitable() const override { return true; }
  [[nodiscard]] bool IsSignaled(const Thread* /*waiter*/) const override { return signaled_; }
  void Acquire(const Thread* /*waiter*/) override {
    if (!manualReset_) signaled_ = false;
  }
  void Set(bool signaled) { signaled_ = signaled; }

 private:
  const bool manualReset_;
  bool signaled_;
};

// One mutex; several handles of the program may stand for it.
struct Mutex {
  std::u16string name;  // empty without one
  const Thread* owner = nullptr;
  int depth = 0;
};

class MutexObject final : public Object {
 public:
  explicit MutexObject(std::shared_ptr<Mutex> mutex) : mutex_(std::move(mutex)) {}

  [[nodiscard]] std::string_view Kind() const override { return "mutex"; }
  [[nodiscard]] bool IsWaitable() const override { return true; }
  [[nodiscard]] bool IsSignaled(const Thread* waiter) const override {
    return mutex_->depth == 0 || mutex_->owner == waiter;
  }
  void Acquire(const Thread* waiter) override {
    mutex_->owner = waiter;
    ++mutex_->depth;
  }
  [[nodiscard]] const std::shared_ptr<Mutex>& Get() const { return mutex_; }

 private:
  std::shared_ptr<Mutex> mutex_;
};

class ThreadObject final : public Object {
 public:
  explicit ThreadObject(std::shared_ptr<Thread> thread) : thread_(std::move(thread)) {}

  [[nodiscard]] std::string_view Kind() const override { return "thread handle"; }
  [[nodiscard]] bool IsWaitable() const override { return true; }
  [[nodiscard]] bool IsSignaled(const Thread* /*waiter*/) const override { return thread_->ended; }
  [[nodiscard]] DWORD ExitCode() const { return thread_->exitCode; }

 private:
  std::shared_ptr<Thread> thread_;
};

}  // namespace pal
