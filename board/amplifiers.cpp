#include "board/amplifiers.h"

#include <array>

#include "board/board_state.h"
#include "board/i2c.h"

namespace veltra {
namespace {

constexpr int kSpeakerAmpRetries = 2;
constexpr uint8_t kSpeakersOn = 0x28;
constexpr uint8_t kSpeakersOff = 0x00;

using SpeakerCommand = std::array<uint8_t, 6>;

SpeakerCommand GainAndEnable() {
  const AudioSettings& audio = Board().audio;
  return {0x05, 0x22, 0x00, audio.speakerGainStep, 0x01, audio.speakerEnable};
}

bool Send(const SpeakerCommand& command) {
  return I2cWrite(kSpeakerAmpAddress, command, kNoRegister, kSpeakerAmpRetries);
}

constexpr uint8_t kHeadphoneGainRegister = 2;
constexpr uint8_t kMuteBit = 0x80;
constexpr uint8_t kFirstHeadphoneRegister = 3;
constexpr uint8_t kHeadphoneRegisters[] = {0xB9, 0x05, 0xFD, 0x00, 0x40, 0x00, 0x10, 0x0B};  // 3 to 10

bool WriteHeadphone(int32_t reg, uint8_t value) {
  return I2cWrite(kHeadphoneAmpAddress, {&value, 1}, reg, 0);
}

}  // namespace

bool SpeakerAmpWrite(bool full) {
  if (!full) return Send(GainAndEnable());
  for (const SpeakerCommand& command : {SpeakerCommand{0x05, 0x21, 0x00, 0x03, 0x00, 0x00}, GainAndEnable(),
                                        SpeakerCommand{0x05, 0x23, 0x48, 0x00, 0x00, 0x00},
                                        SpeakerCommand{0x05, 0x24, 0x03, 0x00, 0x00, 0x05},
                                        SpeakerCommand{0x05, 0x25, 0x00, 0x02, 0x02, 0x00},
                                        SpeakerCommand{0x05, 0x30, 0x30, 0x30, 0x0C, 0x00}})
    if (!Send(command)) return false;
  return true;
}

bool SetSpeakerAmp(bool on) {
  Board().audio.speakerEnable = on ? kSpeakersOn : kSpeakersOff;
  return SpeakerAmpWrite(false);
}

void HeadphoneAmpInit(bool full, bool muted) {
  SetHeadphoneMute(muted);
  if (!full) return;
  int32_t reg = kFirstHeadphoneRegister;
  for (const uint8_t value : kHeadphoneRegisters) WriteHeadphone(reg++, value);
}

bool SetHeadphoneMute(bool muted) {
  const uint8_t gain = Board().audio.headphoneGain;
  return WriteHeadphone(kHeadphoneGainRegister, static_cast<uint8_t>(muted ? gain | kMuteBit : gain));
}

}  // namespace veltra
