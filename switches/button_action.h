// What a press of a side button does: records.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "base/text.h"

namespace veltra {

// Codes of `BtCmd`, as the profile file stores them.
enum class ActionType : int32_t {
  SendMacro = 0,           // BtCmdText: the macro
  SendKey = 1,             // BtCmdVal: virtual-key code
  PlayWaveFile = 2,        // BtCmdText: path
  StartProgram = 3,        // BtCmdText: path
  WindowsFunction = 4,     // BtCmdVal: 0 speaker volume up, 1 down
  TalkBuilderCommand = 5,  // BtCmdVal: command number, as for the two below
  PageVoiceCommand = 6,
  WendleCommand = 7,
  LexoraCommand = 8,    // does nothing
  TalkBuilderCell = 9,  // BtCmdText: ID of the cell
  None = 10,
};

constexpr size_t kLongestButtonText = 1023;  // characters that a record is meant to hold
constexpr size_t kLongestStoredText = 1022;  // characters that are read back from a profile

struct ButtonAction {
  int32_t BtCmd = 0;  // an ActionType, or a number of a newer tool that does nothing here
  int32_t BtCmdVal = 0;
  WideText BtCmdText;
};

enum ButtonIndex : size_t { kTopShort = 0, kBottomShort = 1, kTopLong = 2, kBottomLong = 3 };
using ButtonActions = std::array<ButtonAction, 4>;

}  // namespace veltra
