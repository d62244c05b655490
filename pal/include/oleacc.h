// What a program tells screen readers of its windows.
#pragma once

#include <objbase.h>

using MSAAPROPID = GUID;

#define OBJID_CLIENT 0xFFFFFFFCu
#define CHILDID_SELF 0

struct IAccPropServices : IUnknown {
  virtual HRESULT STDMETHODCALLTYPE SetHwndPropStr(HWND window, DWORD objectId, DWORD childId,
                                                   MSAAPROPID property, LPCWSTR text) = 0;
  virtual HRESULT STDMETHODCALLTYPE ClearHwndProps(HWND window, DWORD objectId, DWORD childId,
                                                   const MSAAPROPID* properties, int count) = 0;

 protected:
  ~IAccPropServices() = default;
};
