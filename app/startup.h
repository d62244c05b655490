// The two fixed sequences of the tool.
#pragma once

namespace veltra {

// Brings the board, the controller link and the radios into their working state. `resume` is false once at
// start and true after standby. A failed step is reported by its owner and the sequence goes on.
void RunStartupSequence(bool resume);

// Ends the state and then leaves the board library.
void RunShutdownSequence();

}  // namespace veltra
