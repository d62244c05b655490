#include "board/codec.h"

#include "base/debug_output.h"
#include "board/amplifiers.h"
#include "board/board_state.h"
#include "board/codec_download.h"
#include "board/expander.h"
#include "board/i2c.h"
#include "board/volume.h"
#include "resources/resource_ids.h"
#include "system/maker_applications.h"
#include "system/numbers.h"
#include "system/sent_messages.h"
#include "system/sounds.h"
#include "system/system_state.h"

namespace veltra {
namespace {

constexpr int kCodecRetries = 4;
constexpr DWORD kPowerMs = 350;  // after the supply was switched on
constexpr DWORD kCodecMs = 450;  // after the codec was switched on
constexpr uint16_t kRoutingControl = 0xE280;

// ---- profiles ---------------------------------------------------------------------------------------------

struct Step {
  enum class Kind { kNone, kPairOn, kSelect, kMicrophoneOn } kind = Kind::kNone;
  CodecPair pair = {};
  CodecSelector selector = {};
  uint16_t index = 0;
};

constexpr Step On(CodecPair pair) {
  return {Step::Kind::kPairOn, pair, {}, 0};
}
constexpr Step At(CodecSelector selector, uint16_t index) {
  return {Step::Kind::kSelect, {}, selector, index};
}
constexpr Step kMicrophoneOn = {Step::Kind::kMicrophoneOn, {}, {}, 0};

struct Profile {
  int32_t number;
  const WCHAR* enterText;  // to the debugger; null: none
  const WCHAR* leaveText;
  bool watchesCalls;  // timer 9 runs
  bool setsB3;        // else clears it
  uint8_t routing;    // low byte of the routing control
  Step steps[8];
};

constexpr Profile kProfiles[] = {
    {1,
     TEXT("profile normal"),
     nullptr,
     false,
     true,
     0x27,
     {At(kS2, 0), On(kP6), At(kS3, 0), On(kP9), On(kP1), At(kS1, 1), On(kP5)}},
    {2,
     TEXT("profile gsm in"),
     TEXT("profile gsm out"),
     true,
     false,
     0x2F,
     {At(kS2, 5), At(kS3, 5), At(kS4, 5), On(kP1), On(kP3), On(kP6), On(kP9), On(kP7)}},
    {3,
     TEXT("profile orla in"),
     TEXT("profile orla out"),
     false,
     false,
     0x2F,
     {At(kS4, 0), On(kP1), On(kP7)}},
    {4, nullptr, nullptr, false, true, 0x27, {At(kS1, 1), On(kP2), kMicrophoneOn, On(kP5)}},
    {5,
     TEXT("profile internal"),
     nullptr,
     true,
     true,
     0x2F,
     {At(kS2, 6), At(kS3, 6), At(kS5, 5), On(kP1), On(kP4), On(kP6), On(kP9), On(kP8)}},
    {6, nullptr, nullptr, false, false, 0x2F, {At(kS2, 2), On(kP3), On(kP6)}},
};

constexpr int32_t kNormalProfile = 1;
constexpr int32_t kSurvivingProfile = 3;  // comes back after suspend and resume

void Apply(const Step& step) {
  switch (step.kind) {
    case Step::Kind::kNone:
      break;
    case Step::Kind::kPairOn:
      SwitchPair(step.pair, true);
      break;
    case Step::Kind::kSelect:
      Select(step.selector, step.index);
      break;
    case Step::Kind::kMicrophoneOn:
      Board().audio.microphoneOn = true;
      break;
  }
}

void Apply(const Profile& profile) {
  if (profile.enterText) Trace(profile.enterText);
  if (profile.watchesCalls) SetTimer(MainWindow(), kCallProfileTimer, kCallProfileMs, nullptr);
  if (profile.setsB3)
    SetPortB(kExpanderB3);
  else
    ClearPortB(kExpanderB3);
  const uint8_t routing[] = {0x00, profile.routing};
  CodecWrite(kRoutingControl, routing);
  for (const Step& step : profile.steps) Apply(step);
  if (profile.leaveText) Trace(profile.leaveText);
}

// ---- power ------------------------------------------------------------------------------------------------

// All paths off. `forgetsMicrophone`: the microphone counts as off from here on.
void ResetAudioPaths(bool forgetsMicrophone) {
  for (const CodecPair& pair : {kP5, kP7, kP6, kP8, kP9, kP4}) SwitchPair(pair, false);
  if (forgetsMicrophone) Board().audio.microphoneOn = false;
  for (const CodecPair& pair : {kP2, kP3, kP1}) SwitchPair(pair, false);
  for (const CodecParameter& parameter : kResetParameters) WriteParameter(parameter);
}

// The steps of the power-up, in their order.
constexpr void (*kPowerUpSteps[])() = {
    [] { PlayResourceSound(IDW_START, true); },
    [] {
      SetPortA(kExpanderCodecA7);
      SetPortA(kExpanderCodecA6);
      Sleep(kPowerMs);
    },
    [] {
      SetPortB(kExpanderCodecB0);
      SetPortA(kExpanderCodecGate);
      SetPortB(kExpanderCodecB4);
      Sleep(kCodecMs);
    },
    [] {
      for (const CodecBlock& block : CodecDownloadBlocks()) CodecWrite(block.address, block.data);
    },
    [] {
      for (const CodecParameter& parameter : kFilterParameters) WriteParameter(parameter);
    },
    [] { SetMicrophoneVolume(Board().audio.MicrophoneVol); },
    [] {
      Board().audio.speakerEnable = 0x00;
      SpeakerAmpWrite(true);
      HeadphoneAmpInit(true, true);
    },
    [] {
      const bool survives = Board().audio.currentProfile == kSurvivingProfile;
      SetAudioProfile(survives ? kSurvivingProfile : kNormalProfile);
    },
    [] {
      SetSpeakerAmp(true);
      SetHeadphoneMute(false);
    },
    [] { SetSpeakerVolume(Board().audio.SpeakerVol); },
    [] { Board().audio.codecReady = true; },
};

}  // namespace

bool CodecPowerUp() {
  for (const auto& step : kPowerUpSteps) {
    ServeSentMessages();
    if (IsSuspended()) break;
    step();
  }
  return true;
}

bool CodecPowerDown() {
  SpeakerAmpWrite(false);
  SetHeadphoneMute(true);
  ClearPortB(kExpanderCodecB0);
  ClearPortA(kExpanderCodecA7);
  ClearPortA(kExpanderCodecA6);
  ResetAudioPaths(false);
  ClearPortB(kExpanderCodecB4);
  ClearPortA(kExpanderCodecGate);
  return true;
}

void SetAudioProfile(int32_t number) {
  Trace(TEXT("setprofile entered"));
  Board().audio.currentProfile = number;
  ResetAudioPaths(true);
  KillTimer(MainWindow(), kCallProfileTimer);
  for (const Profile& profile : kProfiles)
    if (profile.number == number) Apply(profile);
}

void OnCallProfileTimer() {
  if (FindWindowW(kTalkBuilder4Class, nullptr)) {
    SetThreadExecutionState(ES_SYSTEM_REQUIRED | ES_DISPLAY_REQUIRED);
    return;
  }
  SetAudioProfile(kNormalProfile);
}

void SetMicrophonePath(bool on) {
  SwitchPair(kP2, on);
  Board().audio.microphoneOn = on;
}

bool CodecWrite(uint16_t address, Bytes data) {
  for (const std::vector<uint8_t>& transfer : SplitCodecWrite(address, data))
    if (!I2cWrite(kCodecAddress, transfer, kNoRegister, kCodecRetries)) return false;
  return true;
}

void WriteParameter(const CodecParameter& parameter) {
  CodecWrite(parameter.address, parameter.value);
}

void WritePair(const CodecPair& pair, const CodecValue& value) {
  WriteParameter({pair.first, value});
  WriteParameter({pair.second, value});
}

void SwitchPair(const CodecPair& pair, bool on) {
  WritePair(pair, on ? kCodecOne : kCodecZero);
}

void Select(const CodecSelector& selector, uint16_t index) {
  for (uint16_t n = 0; n < selector.count; ++n)
    WriteParameter({static_cast<uint16_t>(selector.first + n), n == index ? kCodecOne : kCodecZero});
}

}  // namespace veltra
