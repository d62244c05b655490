// Core audio: the devices.
#pragma once

#include <objbase.h>

enum EDataFlow { eRender, eCapture, eAll };
enum ERole { eConsole, eMultimedia, eCommunications };

struct IMMDevice : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE Activate(REFIID interfaceId, DWORD context, void* parameters,
                                             void** activated) = 0;

 protected:
  ~IMMDevice() = default;
};

struct IMMDeviceEnumerator : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE GetDefaultAudioEndpoint(EDataFlow flow, ERole role,
                                                            IMMDevice** device) = 0;

 protected:
  ~IMMDeviceEnumerator() = default;
};
