#include "app/sounds.h"

#include <mmsystem.h>

#include "app/app_state.h"

namespace veltra {

void PlayResourceSound(WORD id, bool waits) {
  PlaySoundW(MAKEINTRESOURCEW(id), GetAppState().hInstance, SND_RESOURCE | (waits ? SND_SYNC : SND_ASYNC));
}

}  // namespace veltra
