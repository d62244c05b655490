// Each step from the enumerator to the volume can be made to fail, by its name and with an HRESULT.
#include "pal/devices/playback.h"

#include <endpointvolume.h>

#include <cmath>

#include "pal/devices/owned_object.h"

namespace pal {
namespace {

constexpr IID kVolumeInterface = {
    0x5CDF2C82, 0x841E, 0x4546, {0x97, 0x22, 0x0C, 0xF7, 0x40, 0x78, 0x22, 0x9A}};

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
    *activated = static_cast<IAudioEndpointVolume*>(MakeObject<Volume>(call.Get()));
    return S_OK;
  }
};

class Enumerator final : public Owned<IMMDeviceEnumerator> {
 public:
  HRESULT STDMETHODCALLTYPE GetDefaultAudioEndpoint(EDataFlow flow, ERole role, IMMDevice** device) override {
    const Call call("GetDefaultAudioEndpoint");
    if (call.Fails()) return call.Result();
    if (flow != eRender || role != eConsole) Die("GetDefaultAudioEndpoint of another device");
    *device = MakeObject<Device>(call.Get());
    return S_OK;
  }
};

}  // namespace

IMMDeviceEnumerator* MakeDeviceEnumerator(State& state) {
  return MakeObject<Enumerator>(state);
}

}  // namespace pal
