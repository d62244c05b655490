#include "board/volume.h"

#include <windows.h>

#include <algorithm>

#include "base/debug_output.h"
#include "board/amplifiers.h"
#include "board/audio_endpoint.h"
#include "board/board_state.h"
#include "board/codec.h"
#include "board/gain_tables.h"
#include "resources/resource_ids.h"
#include "system/sent_messages.h"
#include "system/sounds.h"

namespace veltra {
namespace {

constexpr int32_t kDefaultSpeakerVolume = 50;
constexpr int32_t kVolumeStep = 10;
constexpr int32_t kQuietest = 10;
constexpr int32_t kLoudest = 100;

// The argument, or the stored setting, or the default; stored.
int32_t Resolve(int32_t& stored, int32_t argument, int32_t standard) {
  if (argument != kVolumeNotSet) stored = argument;
  if (stored == kVolumeNotSet) stored = standard;
  return stored;
}

// Another program may set the volume meanwhile: what counts is the volume of now.
void SetEndpointPatiently() {
  constexpr int kAttempts = 5;
  for (int attempt = 1; attempt <= kAttempts; ++attempt) {
    if (SetEndpointVolume(EndpointPercent(Board().audio.SpeakerVol), attempt == kAttempts)) return;
    if (attempt == kAttempts) return;
    Trace(TEXT("SetSpeakerVolume failed: retrying"));
    for (int seconds = 0; seconds < attempt; ++seconds) {
      Sleep(1000);
      ServeSentMessages();
    }
  }
}

void RouteMicrophone(uint16_t switchAddress, const CodecSelector& source, const CodecSelector& target) {
  WriteParameter({switchAddress, kCodecOne});
  Select(source, 0);
  Select(target, 0);
}

}  // namespace

bool SetSpeakerVolume(int32_t volume) {
  AudioSettings& audio = Board().audio;
  Resolve(audio.SpeakerVol, volume, kDefaultSpeakerVolume);
  SetEndpointPatiently();
  audio.speakerGainStep = SpeakerGainStep(audio.SpeakerVol);
  return SpeakerAmpWrite(false);
}

void SetMicrophoneVolume(int32_t level) {
  AudioSettings& audio = Board().audio;
  const int32_t effective = Resolve(audio.MicrophoneVol, level, kDefaultMicrophoneLevel);
  SwitchPair(kP2, false);
  RouteMicrophone(kMicrophoneSwitchA, kMicrophoneSourceA, kMicrophoneTargetA);
  RouteMicrophone(kMicrophoneSwitchB, kMicrophoneSourceB, kMicrophoneTargetB);
  if (audio.microphoneOn) SwitchPair(kP2, true);
  Trace(TEXT("mic vol set to %d"), level);
  for (const MicrophoneGain& gain : kMicrophoneGains) {
    if (gain.level != effective) continue;
    WritePair(kG2, CodecWhole(gain.g2));
    WritePair(kG1, CodecWhole(gain.g1));
  }
}

void StepSpeakerVolume(int32_t direction) {
  const int32_t volume = Board().audio.SpeakerVol;
  if (direction != 0 && direction != 1) return;
  SetSpeakerVolume(direction == 0 ? std::min(volume, kLoudest - kVolumeStep) + kVolumeStep
                                  : std::max(volume, kQuietest + kVolumeStep) - kVolumeStep);
  PlayResourceSound(IDW_VOLUME_STEP, false);
}

}  // namespace veltra
