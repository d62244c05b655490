// The records that live longer than a call. Each room declares its own and reaches it by RecordOf; one state
// owns them all (app/app_state) and puts them in use.
#pragma once

#include <exception>
#include <memory>

namespace veltra {

// Whoever holds it keeps the records, the session may end meanwhile.
inline std::shared_ptr<void> stateInUse;

template <class Record>
inline Record* recordInUse = nullptr;

// Nobody has a state any more: the session has ended.
struct StateEnded : std::exception {
  [[nodiscard]] const char* what() const noexcept override { return "the state has ended"; }
};

template <class Record>
[[nodiscard]] bool HasRecord() {
  return recordInUse<Record> != nullptr;
}

template <class Record>
Record& RecordOf() {
  if (!HasRecord<Record>()) throw StateEnded();
  return *recordInUse<Record>;
}

}  // namespace veltra
