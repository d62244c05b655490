// Sounds and the playback device of the machine.
#include <endpointvolume.h>
#include <gtest/gtest.h>
#include <mmdeviceapi.h>
#include <mmsystem.h>

#include "pal/machine.h"
#include "tests/pal/contract_ids.h"

namespace {

using namespace std::chrono_literals;
using pal::Machine;
using pal::Select;

constexpr CLSID kEnumeratorClass = {
    0xBCDE0395, 0xE52F, 0x467C, {0x8E, 0x3D, 0xC4, 0x57, 0x92, 0x91, 0x69, 0x2E}};
constexpr IID kEnumerator = {0xA95664D2, 0x9614, 0x4F35, {0xA7, 0x46, 0xDE, 0x8D, 0xB6, 0x36, 0x17, 0xE6}};
constexpr IID kVolume = {0x5CDF2C82, 0x841E, 0x4546, {0x97, 0x22, 0x0C, 0xF7, 0x40, 0x78, 0x22, 0x9A}};

// All steps to the volume and back, as far as they succeed.
HRESULT SetLevel(float level) {
  void* created = nullptr;
  HRESULT result = CoCreateInstance(kEnumeratorClass, nullptr, CLSCTX_INPROC_SERVER, kEnumerator, &created);
  if (FAILED(result)) return result;
  auto* enumerator = static_cast<IMMDeviceEnumerator*>(created);
  IMMDevice* device = nullptr;
  result = enumerator->GetDefaultAudioEndpoint(eRender, eConsole, &device);
  enumerator->Release();
  if (FAILED(result)) return result;
  void* activated = nullptr;
  result = device->Activate(kVolume, CLSCTX_ALL, nullptr, &activated);
  device->Release();
  if (FAILED(result)) return result;
  auto* volume = static_cast<IAudioEndpointVolume*>(activated);
  result = volume->SetMute(FALSE, nullptr);
  if (SUCCEEDED(result)) result = volume->SetMasterVolumeLevelScalar(level, nullptr);
  volume->Release();
  return result;
}

TEST(MachinePlayback, EachStepFailsAsOftenAsItIsTold) {
  const char* steps[] = {"CoCreateInstance", "GetDefaultAudioEndpoint", "Activate", "SetMute",
                         "SetMasterVolumeLevelScalar"};
  constexpr HRESULT kGone = static_cast<HRESULT>(0x88890004);
  for (const char* step : steps) {
    Machine machine;
    machine.SetPlayback({0.25F, true});
    machine.Fail(step, 2, static_cast<DWORD>(kGone));
    std::vector<HRESULT> results;
    machine.StartProgram([&] {
      CoInitialize(nullptr);
      for (int i = 0; i < 3; ++i) results.push_back(SetLevel(0.9F));
      CoUninitialize();
      Sleep(1000);
      return 0;
    });
    machine.Advance(0s);
    EXPECT_EQ(results, (std::vector<HRESULT>{kGone, kGone, S_OK})) << step;
    EXPECT_FLOAT_EQ(machine.Playback().level, 0.9F) << step;
    EXPECT_FALSE(machine.Playback().isMuted) << step;
    EXPECT_EQ(Select<pal::PlaybackLevel>(machine.Effects()).size(), 1U) << step;
    EXPECT_EQ(machine.CountOpen("com object"), 0) << step;
  }
}

TEST(MachinePlayback, ObjectsThatAreForgottenAreSeen) {
  Machine machine;
  machine.StartProgram([] {
    CoInitialize(nullptr);
    void* forgotten = nullptr;
    CoCreateInstance(kEnumeratorClass, nullptr, CLSCTX_INPROC_SERVER, kEnumerator, &forgotten);
    IMMDevice* device = nullptr;
    static_cast<IMMDeviceEnumerator*>(forgotten)->GetDefaultAudioEndpoint(eRender, eConsole, &device);
    Sleep(1000);
    return 0;
  });
  machine.Advance(0s);
  EXPECT_EQ(machine.CountOpen("com object"), 2);
  machine.Advance(1s);
  EXPECT_EQ(machine.CountOpen("com object"), 0);  // they go with the program
}

TEST(MachineSounds, LastAsLongAsTheyAreWaitedFor) {
  Machine machine;
  machine.LoadResources(VELTRA_RESOURCES);
  machine.WriteFile(u"C:\\hello.wav", "no sound at all");
  std::vector<pal::Time> times;
  std::vector<BOOL> results;
  machine.StartProgram([&] {
    const auto play = [&](LPCWSTR sound, DWORD flags) {
      results.push_back(PlaySoundW(sound, nullptr, flags));
      times.push_back(machine.Now());
    };
    play(MAKEINTRESOURCEW(CONTRACT_SOUND), SND_RESOURCE | SND_ASYNC);
    play(MAKEINTRESOURCEW(CONTRACT_SOUND), SND_RESOURCE | SND_SYNC);
    play(MAKEINTRESOURCEW(CONTRACT_SOUND), SND_RESOURCE | SND_ASYNC | SND_LOOP);
    play(nullptr, 0);
    play(TEXT("C:\\hello.wav"), SND_FILENAME);
    play(TEXT("C:\\missing.wav"), SND_FILENAME | SND_ASYNC);
    play(TEXT("C:\\missing.wav"), SND_FILENAME | SND_ASYNC | SND_NODEFAULT);
    play(MAKEINTRESOURCEW(999), SND_RESOURCE | SND_ASYNC);
    return 0;
  });
  machine.Advance(10s);
  EXPECT_EQ(results, (std::vector<BOOL>{TRUE, TRUE, TRUE, TRUE, TRUE, TRUE, FALSE, FALSE}));
  // 3968 bytes of samples, 44100 a second.
  EXPECT_EQ(times[0], 0us);
  EXPECT_EQ(times[1], pal::Time(3968LL * 1'000'000 / 44100));
  EXPECT_EQ(times.back(), times[1]);
  std::vector<std::string> effects;
  for (const pal::Effect& effect : machine.Effects()) effects.push_back(Describe(effect));
  effects.erase(effects.begin());
  effects.pop_back();
  EXPECT_EQ(effects,
            (std::vector<std::string>{"sound 172", "sound 172", "sound 172 again and again", "sound stopped",
                                      "sound C:\\hello.wav", "sound C:\\missing.wav (missing)"}));
}

}  // namespace
