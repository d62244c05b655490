// Sounds.
#pragma once

#include <windows.h>

#define SND_SYNC 0x0000u
#define SND_ASYNC 0x0001u
#define SND_NODEFAULT 0x0002u
#define SND_LOOP 0x0008u
#define SND_FILENAME 0x00020000u
#define SND_RESOURCE 0x00040004u

// A null sound stops what is playing.
BOOL WINAPI PlaySoundW(LPCWSTR sound, HMODULE module, DWORD flags);
