// The numbered hardware operations that the options dialog, the start-up sequence and the maker's
// applications share.
#pragma once

#include <cstdint>

namespace veltra {

enum DeviceOperationNumber : int32_t {
  kHeadphonesOn = 0,
  kHeadphonesOff = 1,
  kMobilePhoneOn = 2,
  kMobilePhoneOff = 3,
  kSpeakersOn = 4,
  kSpeakersOff = 5,
  kStartWithSwitch = 6,  // value: milliseconds, 0 or less never
  kMicrophoneOff = 8,
  kMicrophoneOn = 9,
  kSpeakerVolume = 10,  // value: the volume
  kBluetoothOn = 13,
  kBluetoothOff = 14,
  kBrightness = 15,  // value: as the brightness tool takes it
  kSpeakersToggle = 16,
  kCallProfile = 17,   // value 1: profile 4 for a while; 0: back to the profile before
  kAudioProfile = 18,  // value: the profile
};

// Runs one operation; numbers outside the list do nothing. A radio that flight mode refuses gives a balloon.
void DeviceOperation(int32_t value, int32_t operation);

// The radios' settings: stored and applied.
void SetWlanEnabled(bool on);
void SetBluetoothEnabled(bool on);
void SetMobilePhoneEnabled(bool on);
// All radios off; their settings stay.
void EnterFlightMode();

}  // namespace veltra
