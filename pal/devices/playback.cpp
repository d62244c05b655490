// Each step from the enumerator to the volume can be made to fail, by its name and with an HRESULT.
#include "pal/devices/playback.h"

#include <endpointvolume.h>

#include <cmath>

#include "pal/machine/state.h"

namespace pal {
namespace {

constexpr IID kVolumeInterface = {
    0x5CDF2C82, 0x841E, 0x4546, {0x97, 0x22, 0x0C, 0xF7, 0x40, 0x78, 0x22, 0x9A}};

// An object with one owner.
template <class Interface>
class Owned : public Interface, public ComObject {
 public:
  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { Die("QueryInterface"); }
  ULONG STDMETHODCALLTYPE AddRef() override { Die("AddRef: a second owner of a COM object"); }
  ULONG STDMETHODCALLTYPE Release() override {
    const Call call;
    const ComObject* self = this;
    std::erase_if(call->playback.objects, [self](const auto& object) { return object.get() == self; });
    return 0;
  }
};

template <class Object>
Object* AddTo(Playback& playback) {
  auto object = std::make_unique<Object>();
  Object* added = object.get();
  playback.objects.push_back(std::move(object));
  return added;
}

class Volume final : public Owned<IAudioEndpointVolume> {
 public:
  HRESULT STDMETHODCALLTYPE SetMasterVolumeLevelScalar(float level, LPCGUID) override {
    const Call call("SetMasterVolumeLevelScalar");
    if (call.Fails()) return call.Result();
    if (!(level >= 0.0F && level <= 1.0F)) return E_INVALIDARG;
    call->playback.volume.level = level;
    call->Emit(PlaybackLevel{static_cast<int>(std::lround(level * 100.0F))});
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE SetMute(BOOL muted, LPCGUID) override {
    const Call call("SetMute");
    if (call.Fails()) return call.Result();
    const bool changes = call->playback.volume.isMuted != (muted != FALSE);
    call->playback.volume.isMuted = muted != FALSE;
    call->Emit(PlaybackMute{muted != FALSE});
    return changes ? S_OK : S_FALSE;
  }
};

class Device final : public Owned<IMMDevice> {
 public:
  HRESULT STDMETHODCALLTYPE Activate(REFIID interfaceId, DWORD /*context*/, void* parameters,
                                     void** activated) override {
    const Call call("Activate");
    if (call.Fails()) return call.Result();
    if (interfaceId != kVolumeInterface || parameters) Die("Activate of an unknown interface");
    *activated = static_cast<IAudioEndpointVolume*>(AddTo<Volume>(call->playback));
    return S_OK;
  }
};

class Enumerator final : public Owned<IMMDeviceEnumerator> {
 public:
  HRESULT STDMETHODCALLTYPE GetDefaultAudioEndpoint(EDataFlow flow, ERole role, IMMDevice** device) override {
    const Call call("GetDefaultAudioEndpoint");
    if (call.Fails()) return call.Result();
    if (flow != eRender || role != eConsole) Die("GetDefaultAudioEndpoint of another device");
    *device = AddTo<Device>(call->playback);
    return S_OK;
  }
};

}  // namespace

IMMDeviceEnumerator* MakeDeviceEnumerator(Playback& playback) {
  return AddTo<Enumerator>(playback);
}

}  // namespace pal
