// PlaySoundW.
#include <mmsystem.h>

#include <string_view>

#include "pal/machine/state.h"

using namespace pal;

namespace {

constexpr DWORD kManner = SND_ASYNC | SND_NODEFAULT | SND_LOOP;
constexpr size_t kChunkHeader = 8;

uint32_t NumberAt(std::string_view bytes, size_t at) {
  uint32_t number = 0;
  for (size_t i = sizeof(number); i-- > 0;)
    number = number << 8 | (at + i < bytes.size() ? static_cast<uint8_t>(bytes[at + i]) : 0U);
  return number;
}

// The content of a chunk of a WAVE file, empty when there is none.
std::string_view FindChunk(std::string_view wave, std::string_view name) {
  constexpr size_t kFirstChunk = 12;
  size_t at = kFirstChunk;
  while (at + kChunkHeader <= wave.size()) {
    const size_t size = NumberAt(wave, at + 4);
    if (wave.substr(at, name.size()) == name) return wave.substr(at + kChunkHeader, size);
    at += kChunkHeader + size + size % 2;
  }
  return {};
}

// How long it plays; no time when it is no WAVE file.
Time LengthOf(std::string_view wave) {
  constexpr size_t kBytesPerSecond = 8;
  const uint32_t rate = NumberAt(FindChunk(wave, "fmt "), kBytesPerSecond);
  if (rate == 0) return Time(0);
  return Time(static_cast<int64_t>(FindChunk(wave, "data").size()) * 1'000'000 / rate);
}

// The sound's bytes, empty when there is no such sound.
std::optional<std::string> FindSound(const Call& call, LPCWSTR sound, HMODULE module, DWORD source) {
  if (source == SND_FILENAME) return call->disk.Read(sound);
  if (source != SND_RESOURCE || !IS_INTRESOURCE(sound)) Die("PlaySoundW of neither a file nor a resource");
  if (module && module != ProgramInstance()) Die("PlaySoundW of another module's resource");
  const auto* found = call->resources.Find(ResourceNameOf(u"WAVE"), ResourceNameOf(sound), LANG_NEUTRAL);
  if (!found) return std::nullopt;
  return std::string(found->second.begin(), found->second.end());
}

}  // namespace

BOOL WINAPI PlaySoundW(LPCWSTR sound, HMODULE module, DWORD flags) {
  const Call call("PlaySoundW");
  if (call.Fails()) return FALSE;
  if (!sound) {
    call->Emit(SoundStopped{});
    return TRUE;
  }
  if ((flags & SND_LOOP) && !(flags & SND_ASYNC)) Die("PlaySoundW of a sound that would never end");
  const DWORD source = flags & ~kManner;
  const std::optional<std::string> wave = FindSound(call, sound, module, source);
  const bool isFile = source == SND_FILENAME;
  // Windows has a sound of its own in place of a file that is missing, but not in place of a resource.
  if (!wave && (!isFile || (flags & SND_NODEFAULT))) return FALSE;

  SoundPlayed played;
  if (isFile)
    played.file = sound;
  else
    played.resource = static_cast<int>(reinterpret_cast<ULONG_PTR>(sound));
  played.flags = flags;
  played.isMissing = !wave;
  call->Emit(std::move(played));
  if (wave && !(flags & SND_ASYNC))
    call->scheduler.Wait([] { return false; }, call->scheduler.Now() + LengthOf(*wave));
  return TRUE;
}
