#include "board/audio_endpoint.h"

#include <windows.h>

#include <endpointvolume.h>
#include <mmdeviceapi.h>
#include <objbase.h>

#include <algorithm>
#include <memory>

#include "base/debug_output.h"
#include "base/text.h"
#include "board/endpoint_callback.h"
#include "system/message_box.h"
#include "system/sent_messages.h"
#include "system/system_state.h"

namespace veltra {
namespace {

constexpr GUID kDeviceEnumeratorClass = {
    0xBCDE0395, 0xE52F, 0x467C, {0x8E, 0x3D, 0xC4, 0x57, 0x92, 0x91, 0x69, 0x2E}};
constexpr GUID kDeviceEnumerator = {
    0xA95664D2, 0x9614, 0x4F35, {0xA7, 0x46, 0xDE, 0x8D, 0xB6, 0x36, 0x17, 0xE6}};
constexpr GUID kEndpointVolume = {
    0x5CDF2C82, 0x841E, 0x4546, {0x97, 0x22, 0x0C, 0xF7, 0x40, 0x78, 0x22, 0x9A}};

// Passed with every change, so that a listener could tell the tool's changes from others.
GUID eventContext = {};

struct Releaser {
  void operator()(IUnknown* object) const { object->Release(); }
};
template <class Interface>
using ComPointer = std::unique_ptr<Interface, Releaser>;

void ShowBox(BoxKind kind, const WCHAR* text, const WCHAR* caption) {
  ShowMessageBox(kind, nullptr, text, caption, MB_OK);
  ServeSentMessages();
}

void ShowFatalError() {
  ShowBox(BoxKind::kEndpointNotSet, TEXT("The program will exit."), TEXT("Fatal error"));
}

// The steps up to the first that fails; its result. Nobody tells the callback of changes that others make.
HRESULT ApplyLevel(int32_t percent) {
  const ComPointer<CAudioEndpointVolumeCallback> callback(new CAudioEndpointVolumeCallback);
  HRESULT result = CoCreateGuid(&eventContext);
  if (FAILED(result)) return result;

  void* created = nullptr;
  result =
      CoCreateInstance(kDeviceEnumeratorClass, nullptr, CLSCTX_INPROC_SERVER, kDeviceEnumerator, &created);
  if (FAILED(result)) return result;
  const ComPointer<IMMDeviceEnumerator> enumerator(static_cast<IMMDeviceEnumerator*>(created));

  IMMDevice* device = nullptr;
  result = enumerator->GetDefaultAudioEndpoint(eRender, eConsole, &device);
  if (FAILED(result)) return result;
  const ComPointer<IMMDevice> endpoint(device);

  void* activated = nullptr;
  result = endpoint->Activate(kEndpointVolume, CLSCTX_ALL, nullptr, &activated);
  if (FAILED(result)) return result;
  const ComPointer<IAudioEndpointVolume> volume(static_cast<IAudioEndpointVolume*>(activated));

  if (FAILED(volume->SetMute(FALSE, &eventContext))) ShowFatalError();
  const float level = std::clamp(static_cast<float>(percent) / 100.0F, 0.0F, 1.0F);
  result = volume->SetMasterVolumeLevelScalar(level, &eventContext);
  if (FAILED(result)) ShowFatalError();
  return result;
}

}  // namespace

bool SetEndpointVolume(int32_t percent, bool showError) {
  const std::shared_ptr<ComLibrary> com = System().com;
  const HRESULT result = ApplyLevel(percent);
  if (SUCCEEDED(result)) return true;
  Trace(TEXT("Audio codec error %d"), static_cast<int32_t>(result));
  if (showError)
    ShowBox(BoxKind::kEndpointUnreached, TEXT("A problem with the audio codec was detected."),
            TEXT("Error termination"));
  return false;
}

}  // namespace veltra
