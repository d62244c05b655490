// COM: what every thread that uses it calls at its beginning and end, and the making of objects.
#pragma once

#include <windows.h>

#include "guiddef.h"

#define STDMETHODCALLTYPE WINAPI

inline constexpr IID IID_IUnknown = {0x00000000, 0x0000, 0x0000, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

struct IUnknown {
  virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID interfaceId, void** object) = 0;
  virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
  virtual ULONG STDMETHODCALLTYPE Release() = 0;

 protected:
  ~IUnknown() = default;
};

#define CLSCTX_INPROC_SERVER 0x1u
#define CLSCTX_ALL 0x17u

HRESULT WINAPI CoInitialize(LPVOID reserved);
void WINAPI CoUninitialize();
HRESULT WINAPI CoCreateGuid(GUID* guid);
HRESULT WINAPI CoCreateInstance(REFCLSID classId, IUnknown* outer, DWORD context, REFIID interfaceId,
                                LPVOID* object);
