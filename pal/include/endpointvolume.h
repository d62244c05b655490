// Core audio: the volume of a device.
#pragma once

#include <objbase.h>

struct IAudioEndpointVolume : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE SetMasterVolumeLevelScalar(float level, LPCGUID context) = 0;
  virtual HRESULT STDMETHODCALLTYPE SetMute(BOOL muted, LPCGUID context) = 0;

 protected:
  ~IAudioEndpointVolume() = default;
};
