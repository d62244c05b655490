// COM: its beginning and end on a thread, identifiers, and the making of objects.
#include <objbase.h>

#include "pal/dialogs/spoken_names.h"
#include "pal/machine/state.h"

using namespace pal;

namespace {

// CoInitialize calls of the thread that still want their CoUninitialize.
thread_local int initialized = 0;

}  // namespace

HRESULT WINAPI CoInitialize(LPVOID reserved) {
  const Call call("CoInitialize");
  if (call.Fails()) return E_FAIL;
  if (reserved) return E_INVALIDARG;
  return initialized++ == 0 ? S_OK : S_FALSE;
}

void WINAPI CoUninitialize() {
  if (initialized == 0) Die("CoUninitialize without CoInitialize");
  --initialized;
}

// Numbered, so that runs are the same every time.
HRESULT WINAPI CoCreateGuid(GUID* guid) {
  const Call call("CoCreateGuid");
  if (call.Fails()) return call.Result();
  *guid = {++call->lastGuid, 0x5E6F, 0x4A71, {0x80, 0x92, 0xA3, 0xB4, 0xC5, 0xD6, 0xE7, 0xF8}};
  return S_OK;
}

HRESULT WINAPI CoCreateInstance(REFCLSID classId, IUnknown* outer, DWORD context, REFIID interfaceId,
                                LPVOID* object) {
  const Call call("CoCreateInstance");
  const bool isPlayback = classId == kDeviceEnumeratorClass && interfaceId == kDeviceEnumeratorInterface;
  const bool isNames = classId == kAccPropServicesClass && interfaceId == kAccPropServicesInterface;
  if ((!isPlayback && !isNames) || outer || context != CLSCTX_INPROC_SERVER)
    Die("CoCreateInstance of an unknown class");
  *object = nullptr;
  if (call.Fails()) return call.Result();
  if (initialized == 0) return CO_E_NOTINITIALIZED;
  if (isNames)
    *object = MakeAccPropServices(call.Get());
  else
    *object = MakeDeviceEnumerator(call.Get());
  return S_OK;
}
