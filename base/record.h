// The records that live longer than a call. Each room declares its own and reaches it by RecordOf; one state
// owns them all (app/app_state) and puts them in use.
#pragma once

#include <exception>

namespace veltra {

// Null when no state is in use: before the start and after the end.
template <class Record>
inline Record* recordInUse = nullptr;

// The session has ended meanwhile, or the start has: thrown at who is still at work with the state, caught
// where Windows called the tool.
struct StateEnded : std::exception {
  [[nodiscard]] const char* what() const noexcept override { return "the state has ended"; }
};

template <class Record>
Record& RecordOf() {
  if (!recordInUse<Record>) throw StateEnded();
  return *recordInUse<Record>;
}

}  // namespace veltra
