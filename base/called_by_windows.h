// The way into the tool: whatever Windows calls (window and dialog procedures, timer procedures, the entry)
// runs in here.
#pragma once

#include <windows.h>

#include <memory>

#include "base/debug_output.h"
#include "base/record.h"

namespace veltra {

// The owner of the state in use.
inline std::shared_ptr<void> stateInUse;

// Every call that waits, in a box or for another program, comes back to the handler that made it, and Windows
// may have ended the session meanwhile. So the state that is in use when a handler begins lives until it has
// come back; but it is in use no more, and the handler's next look at a record ends it. Returns `otherwise`
// when it ended so or failed.
template <class Result, class Handler>
Result CalledByWindows(const WCHAR* who, UINT message, Result otherwise, Handler handler) {
  const std::shared_ptr<void> held = stateInUse;
  try {
    return handler();
  } catch (const StateEnded&) {
    return otherwise;
  } catch (...) {
    Trace(TEXT("%s: message %X ended by an exception"), who, message);
    return otherwise;
  }
}

}  // namespace veltra
