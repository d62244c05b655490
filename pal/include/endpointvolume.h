// Core audio: the volume of a device.
#pragma once

#include <objbase.h>

struct AUDIO_VOLUME_NOTIFICATION_DATA {
  GUID guidEventContext;
  BOOL bMuted;
  float fMasterVolume;
  UINT nChannels;
  float afChannelVolumes[1];
};
using PAUDIO_VOLUME_NOTIFICATION_DATA = AUDIO_VOLUME_NOTIFICATION_DATA*;

struct IAudioEndpointVolumeCallback : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE OnNotify(PAUDIO_VOLUME_NOTIFICATION_DATA notification) = 0;

 protected:
  ~IAudioEndpointVolumeCallback() = default;
};

struct IAudioEndpointVolume : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE SetMasterVolumeLevelScalar(float level, LPCGUID context) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetMute(BOOL muted, LPCGUID context) = 0;

 protected:
  ~IAudioEndpointVolume() = default;
};
