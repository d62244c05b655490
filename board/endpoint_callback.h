// Who would listen to changes of the playback device's volume.
#pragma once

#include <windows.h>

#include <endpointvolume.h>

#include <atomic>

namespace veltra {

// Takes every change and does nothing with it. Begins with one reference, ends itself with the last.
class CAudioEndpointVolumeCallback final : public IAudioEndpointVolumeCallback {
 public:
  CAudioEndpointVolumeCallback() = default;
  CAudioEndpointVolumeCallback(const CAudioEndpointVolumeCallback&) = delete;
  CAudioEndpointVolumeCallback& operator=(const CAudioEndpointVolumeCallback&) = delete;

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID interfaceId, void** object) override;
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override;
  HRESULT STDMETHODCALLTYPE OnNotify(PAUDIO_VOLUME_NOTIFICATION_DATA notification) override;

 private:
  ~CAudioEndpointVolumeCallback() = default;

  std::atomic<ULONG> references_ = 1;
};

}  // namespace veltra
