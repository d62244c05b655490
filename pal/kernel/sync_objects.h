// Events, mutexes and threads as the program's handles know them.
#pragma once

#include <memory>
#include <string>

#include "pal/kernel/handles.h"
#include "pal/kernel/scheduler.h"

namespace pal {

class EventObject final : public Object {
 public:
  explicit EventObject(bool signaled) : signaled_(signaled) {}

  [[nodiscard]] std::string_view Kind() const override { return "event"; }
  [[nodiscard]] bool IsWaitable() const override { return true; }
  [[nodiscard]] bool IsSignaled() const override { return signaled_; }
  void Set(bool signaled) { signaled_ = signaled; }

 private:
  bool signaled_;
};

// One mutex; several handles of the program may stand for it.
struct Mutex {
  std::u16string name;
};

class MutexObject final : public Object {
 public:
  explicit MutexObject(std::shared_ptr<Mutex> mutex) : mutex_(std::move(mutex)) {}

  [[nodiscard]] std::string_view Kind() const override { return "mutex"; }

 private:
  std::shared_ptr<Mutex> mutex_;
};

class ThreadObject final : public Object {
 public:
  [[nodiscard]] std::string_view Kind() const override { return "thread handle"; }
};

}  // namespace pal
