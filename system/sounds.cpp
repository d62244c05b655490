#include "system/sounds.h"

#include <mmsystem.h>

#include "system/system_state.h"

namespace veltra {

void PlayResourceSound(WORD id, bool waits) {
  PlaySoundW(MAKEINTRESOURCEW(id), System().hInstance, SND_RESOURCE | (waits ? SND_SYNC : SND_ASYNC));
}

}  // namespace veltra
