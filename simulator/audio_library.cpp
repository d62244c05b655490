// A playback device for a Windows that has none: an in-process server for the class of the device enumerator.
// It reports what is done to its one device. The function that the environment names in
// VELTRA_PLAYBACK_REFUSES always fails.
#include <windows.h>

#include <endpointvolume.h>
#include <mmdeviceapi.h>

#include <cstdlib>
#include <string>
#include <string_view>

#include "simulator/report.h"

namespace {

constexpr GUID kUnknown = {0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
constexpr GUID kClassFactory = {0x00000001, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
constexpr GUID kDeviceEnumerator = {
    0xA95664D2, 0x9614, 0x4F35, {0xA7, 0x46, 0xDE, 0x8D, 0xB6, 0x36, 0x17, 0xE6}};
constexpr GUID kDevice = {0xD666063F, 0x1587, 0x4E43, {0x81, 0xF1, 0xB9, 0x48, 0xE8, 0x07, 0x36, 0x3F}};
constexpr GUID kEndpointVolume = {
    0x5CDF2C82, 0x841E, 0x4546, {0x97, 0x22, 0x0C, 0xF7, 0x40, 0x78, 0x22, 0x9A}};

bool IsRefused(std::string_view function) {
  const char* refused = std::getenv("VELTRA_PLAYBACK_REFUSES");
  return refused && function == refused;
}

HRESULT ReportCall(const std::string& call) {
  simulator::Report("playback", call);
  return S_OK;
}

// One object for the life of the process: counting references would change nothing.
template <class Interface>
class Lasting : public Interface {
 public:
  explicit Lasting(const GUID& id) : id_(id) {}
  virtual ~Lasting() = default;

  HRESULT WINAPI QueryInterface(REFIID id, void** object) override {
    const bool known = IsEqualGUID(id, id_) || IsEqualGUID(id, kUnknown);
    *object = known ? this : nullptr;
    return known ? S_OK : E_NOINTERFACE;
  }
  ULONG WINAPI AddRef() override { return 2; }
  ULONG WINAPI Release() override { return 1; }

 private:
  GUID id_;
};

class Volume final : public Lasting<IAudioEndpointVolume> {
 public:
  Volume() : Lasting(kEndpointVolume) {}

  HRESULT WINAPI SetMute(BOOL mute, LPCGUID) override {
    if (IsRefused("SetMute")) return E_FAIL;
    return ReportCall(mute ? "muted" : "not muted");
  }
  HRESULT WINAPI SetMasterVolumeLevelScalar(FLOAT level, LPCGUID) override {
    return ReportCall(
        std::string("level ").append(std::to_string(static_cast<int>(level * 100 + 0.5F))).append(" %"));
  }

  HRESULT WINAPI RegisterControlChangeNotify(IAudioEndpointVolumeCallback*) override { return E_NOTIMPL; }
  HRESULT WINAPI UnregisterControlChangeNotify(IAudioEndpointVolumeCallback*) override { return E_NOTIMPL; }
  HRESULT WINAPI GetChannelCount(UINT*) override { return E_NOTIMPL; }
  HRESULT WINAPI SetMasterVolumeLevel(FLOAT, LPCGUID) override { return E_NOTIMPL; }
  HRESULT WINAPI GetMasterVolumeLevel(FLOAT*) override { return E_NOTIMPL; }
  HRESULT WINAPI GetMasterVolumeLevelScalar(FLOAT*) override { return E_NOTIMPL; }
  HRESULT WINAPI SetChannelVolumeLevel(UINT, FLOAT, LPCGUID) override { return E_NOTIMPL; }
  HRESULT WINAPI SetChannelVolumeLevelScalar(UINT, FLOAT, LPCGUID) override { return E_NOTIMPL; }
  HRESULT WINAPI GetChannelVolumeLevel(UINT, FLOAT*) override { return E_NOTIMPL; }
  HRESULT WINAPI GetChannelVolumeLevelScalar(UINT, FLOAT*) override { return E_NOTIMPL; }
  HRESULT WINAPI GetMute(BOOL*) override { return E_NOTIMPL; }
  HRESULT WINAPI GetVolumeStepInfo(UINT*, UINT*) override { return E_NOTIMPL; }
  HRESULT WINAPI VolumeStepUp(LPCGUID) override { return E_NOTIMPL; }
  HRESULT WINAPI VolumeStepDown(LPCGUID) override { return E_NOTIMPL; }
  HRESULT WINAPI QueryHardwareSupport(DWORD*) override { return E_NOTIMPL; }
  HRESULT WINAPI GetVolumeRange(FLOAT*, FLOAT*, FLOAT*) override { return E_NOTIMPL; }
};

class Device final : public Lasting<IMMDevice> {
 public:
  Device() : Lasting(kDevice) {}

  HRESULT WINAPI Activate(REFIID id, DWORD, PROPVARIANT*, void** object) override {
    static Volume volume;
    return volume.QueryInterface(id, object);
  }

  HRESULT WINAPI OpenPropertyStore(DWORD, IPropertyStore**) override { return E_NOTIMPL; }
  HRESULT WINAPI GetId(LPWSTR*) override { return E_NOTIMPL; }
  HRESULT WINAPI GetState(DWORD*) override { return E_NOTIMPL; }
};

class Enumerator final : public Lasting<IMMDeviceEnumerator> {
 public:
  Enumerator() : Lasting(kDeviceEnumerator) {}

  HRESULT WINAPI GetDefaultAudioEndpoint(EDataFlow, ERole, IMMDevice** device) override {
    if (IsRefused("GetDefaultAudioEndpoint")) return E_FAIL;
    static Device only;
    *device = &only;
    return S_OK;
  }

  HRESULT WINAPI EnumAudioEndpoints(EDataFlow, DWORD, IMMDeviceCollection**) override { return E_NOTIMPL; }
  HRESULT WINAPI GetDevice(LPCWSTR, IMMDevice**) override { return E_NOTIMPL; }
  HRESULT WINAPI RegisterEndpointNotificationCallback(IMMNotificationClient*) override { return E_NOTIMPL; }
  HRESULT WINAPI UnregisterEndpointNotificationCallback(IMMNotificationClient*) override { return E_NOTIMPL; }
};

class Factory final : public Lasting<IClassFactory> {
 public:
  Factory() : Lasting(kClassFactory) {}

  HRESULT WINAPI CreateInstance(IUnknown*, REFIID id, void** object) override {
    static Enumerator enumerator;
    return enumerator.QueryInterface(id, object);
  }
  HRESULT WINAPI LockServer(BOOL) override { return S_OK; }
};

}  // namespace

STDAPI DllGetClassObject(REFCLSID, REFIID id, void** object) {
  static Factory factory;
  return factory.QueryInterface(id, object);
}
