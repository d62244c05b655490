#include "board/endpoint_callback.h"

namespace veltra {
namespace {

constexpr GUID kUnknown = {0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
constexpr GUID kVolumeCallback = {
    0x657804FA, 0xD6AD, 0x4496, {0x8A, 0x60, 0x35, 0x27, 0x52, 0xAF, 0x4F, 0x89}};

}  // namespace

HRESULT STDMETHODCALLTYPE CAudioEndpointVolumeCallback::QueryInterface(REFIID interfaceId, void** object) {
  const bool isKnown = interfaceId == kUnknown || interfaceId == kVolumeCallback;
  *object = isKnown ? static_cast<IAudioEndpointVolumeCallback*>(this) : nullptr;
  if (isKnown) AddRef();
  return isKnown ? S_OK : E_NOINTERFACE;
}

ULONG STDMETHODCALLTYPE CAudioEndpointVolumeCallback::Release() {
  const ULONG left = --references_;
  if (left == 0) delete this;
  return left;
}

HRESULT STDMETHODCALLTYPE
CAudioEndpointVolumeCallback::OnNotify(PAUDIO_VOLUME_NOTIFICATION_DATA notification) {
  return notification ? S_OK : E_INVALIDARG;
}

}  // namespace veltra
