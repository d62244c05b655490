// The board: its library, the image of its expander, and the sound: the room's record.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>

#include "base/record.h"
#include "board/board_library.h"

namespace veltra {

struct AudioSettings {
  static constexpr int32_t kNoProfile = -1;

  int32_t SpeakerVol = -1;            // 10 to 100, -1 not set
  int32_t MicrophoneVol = -1;         // 1 to 9, -1 not set
  uint8_t headphoneGain = 6;          // code of the headphone amplifier's register 2
  int32_t currentProfile = 1;         // as last passed to SetAudioProfile
  int32_t savedProfile = kNoProfile;  // to come back to when a call ends
  bool microphoneOn = false;          // the microphone path is enabled
  bool speakersOn = true;             // last state chosen for the speaker amplifier
  bool codecReady = false;            // the codec power-up has finished
  uint8_t speakerGainStep = 0;        // G of the speaker amplifier's second command
  uint8_t speakerEnable = 0;          // E of the same: 0x28 on, 0x00 off
};

struct BoardState {
  AudioSettings audio;
  std::shared_ptr<const BoardLibrary> library;  // null without one; who is at work in it holds it too
  uint8_t ExpanderPortA = 0;                    // what the outputs of the I/O expander should be
  uint8_t ExpanderPortB = 0;
  std::optional<DWORD> retriesUntil;  // by GetTickCount; see HurryWrites
};

inline BoardState& Board() {
  return RecordOf<BoardState>();
}

}  // namespace veltra
