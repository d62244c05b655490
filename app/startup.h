// The two fixed sequences of the tool.
#pragma once

namespace veltra {

// Brings the board, the controller link and the radios into their working state. `resume` is false once at
// start and true after standby. A failed step is reported by its owner and the sequence goes on.
void RunStartupSequence(bool resume);

// Ends the state and releases the board library. After it HasAppState() is false.
void RunShutdownSequence();

}  // namespace veltra
