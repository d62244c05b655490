#include "app/device_operations.h"

#include <string>

#include "app/app_state.h"
#include "app/settings_store.h"
#include "board/amplifiers.h"
#include "board/codec.h"
#include "board/expander.h"
#include "board/volume.h"
#include "link/send_queue.h"
#include "power/outside_tools.h"
#include "resources/resource_ids.h"
#include "system/language.h"
#include "system/tray_icons.h"

namespace veltra {
namespace {

// Whether a radio may be switched on; says so to the user when not.
bool MayRadiate() {
  if (!Power().EnableFlightMode) return true;
  ShowTrayBalloon(LoadResString(IDS_FLIGHT_MODE_BALLOON));
  return false;
}

// The expander's bit follows when the controller has acknowledged.
void SwitchMobilePhoneOn(int32_t) {
  if (MayRadiate()) SendText("EnableGsm=1");
}

void SwitchMobilePhoneOff(int32_t) {
  ClearPortB(kExpanderMobilePhone);
  SendText("EnableGsm=0");
}

void SwitchBluetoothOn(int32_t) {
  if (!MayRadiate()) return;
  SendText("EnableBT=1");
  SetPortB(kExpanderBluetooth);
}

void SwitchBluetoothOff(int32_t) {
  SendText("EnableBT=0");
  ClearPortB(kExpanderBluetooth);
}

void SwitchSpeakers(bool on) {
  Board().audio.speakersOn = on;
  SetSpeakerAmp(on);
}

void StartWithSwitch(int32_t milliseconds) {
  SendText(std::string("StartWithSwitch=").append(std::to_string(milliseconds > 0 ? milliseconds : 0)));
}

void SetAndSaveSpeakerVolume(int32_t volume) {
  SetSpeakerVolume(volume);
  SaveSettings();
}

void SwitchCallProfile(int32_t value) {
  constexpr int32_t kProfileOfCall = 4;
  AudioSettings& audio = Board().audio;
  if (value == 1) {
    audio.savedProfile = audio.currentProfile;
    SetAudioProfile(kProfileOfCall);
  }
  if (value == 0 && audio.savedProfile != AudioSettings::kNoProfile) {
    SetAudioProfile(audio.savedProfile);
    audio.savedProfile = AudioSettings::kNoProfile;
  }
}

struct OperationRow {
  int32_t operation;
  void (*run)(int32_t value);
};

constexpr OperationRow kOperations[] = {
    {kHeadphonesOn, [](int32_t) { SetHeadphoneMute(false); }},
    {kHeadphonesOff, [](int32_t) { SetHeadphoneMute(true); }},
    {kMobilePhoneOn, SwitchMobilePhoneOn},
    {kMobilePhoneOff, SwitchMobilePhoneOff},
    {kSpeakersOn, [](int32_t) { SwitchSpeakers(true); }},
    {kSpeakersOff, [](int32_t) { SwitchSpeakers(false); }},
    {kStartWithSwitch, StartWithSwitch},
    {kMicrophoneOff, [](int32_t) { SetMicrophonePath(false); }},
    {kMicrophoneOn, [](int32_t) { SetMicrophonePath(true); }},
    {kSpeakerVolume, SetAndSaveSpeakerVolume},
    {kBluetoothOn, SwitchBluetoothOn},
    {kBluetoothOff, SwitchBluetoothOff},
    {kBrightness, SetBrightness},
    {kSpeakersToggle, [](int32_t) { SwitchSpeakers(!Board().audio.speakersOn); }},
    {kCallProfile, SwitchCallProfile},
    {kAudioProfile, SetAudioProfile},
};

}  // namespace

void DeviceOperation(int32_t value, int32_t operation) {
  for (const OperationRow& row : kOperations)
    if (row.operation == operation) return row.run(value);
}

void SetWlanEnabled(bool on) {
  Power().EnableWLAN = on;
  if (on)
    SetPortA(kExpanderWlan);
  else
    ClearPortA(kExpanderWlan);
}

void SetBluetoothEnabled(bool on) {
  Power().EnableBluetooth = on;
  DeviceOperation(0, on ? kBluetoothOn : kBluetoothOff);
}

void SetMobilePhoneEnabled(bool on) {
  Power().EnableMobilePhone = on;
  DeviceOperation(0, on ? kMobilePhoneOn : kMobilePhoneOff);
}

void EnterFlightMode() {
  ClearPortA(kExpanderWlan);
  DeviceOperation(0, kBluetoothOff);
  DeviceOperation(0, kMobilePhoneOff);
}

}  // namespace veltra
