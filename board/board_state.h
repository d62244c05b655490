// The board: its library, the image of its expander, and the sound: the room's record.
#pragma once

#include <cstdint>

#include "base/record.h"
#include "board/audio_settings.h"
#include "board/board_library.h"

namespace veltra {

struct BoardState {
  AudioSettings audio;
  BoardLibrary library;
  uint8_t ExpanderPortA = 0;  // what the outputs of the I/O expander should be
  uint8_t ExpanderPortB = 0;
};

inline BoardState& Board() {
  return RecordOf<BoardState>();
}

}  // namespace veltra
