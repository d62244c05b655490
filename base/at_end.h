// What a scope undoes, by whatever way it is left: out of memory, say, or because the session has ended.
#pragma once

#include <utility>

namespace veltra {

template <class Action>
class AtEnd {
 public:
  explicit AtEnd(Action action) : action_(std::move(action)) {}  // the action throws nothing
  ~AtEnd() { action_(); }
  AtEnd(const AtEnd&) = delete;
  AtEnd& operator=(const AtEnd&) = delete;

 private:
  Action action_;
};

}  // namespace veltra
