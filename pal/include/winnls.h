// Languages and code pages.
#pragma once

#include "windef.h"

#define MAKELANGID(primary, sub) \
  (static_cast<WORD>((static_cast<WORD>(sub) << 10) | static_cast<WORD>(primary)))
#define PRIMARYLANGID(language) (static_cast<WORD>(static_cast<WORD>(language) & 0x3FF))
#define MAKELCID(language, sort)                                            \
  (static_cast<DWORD>((static_cast<DWORD>(static_cast<WORD>(sort)) << 16) | \
                      static_cast<DWORD>(static_cast<WORD>(language))))
#define LANGIDFROMLCID(locale) (static_cast<WORD>(locale))
#define SORT_DEFAULT 0x0

#define LANG_NEUTRAL 0x00
#define LANG_ENGLISH 0x09
#define LANG_DUTCH 0x13
#define SUBLANG_NEUTRAL 0x00
#define SUBLANG_ENGLISH_US 0x01
#define SUBLANG_ENGLISH_UK 0x02
#define SUBLANG_DUTCH 0x01

#define CP_ACP 0u
#define CP_THREAD_ACP 3u
#define CP_UTF8 65001u
#define WC_NO_BEST_FIT_CHARS 0x00000400u

// Length -1: up to the terminator, which is converted too. Both return the length of the result, or 0.
int WINAPI WideCharToMultiByte(UINT codePage, DWORD flags, LPCWCH text, int textLength, LPSTR result,
                               int resultSize, LPCCH defaultChar, LPBOOL usedDefaultChar);
int WINAPI MultiByteToWideChar(UINT codePage, DWORD flags, LPCCH text, int textLength, LPWSTR result,
                               int resultSize);

BOOL WINAPI SetThreadLocale(LCID locale);
LANGID WINAPI SetThreadUILanguage(LANGID language);
LANGID WINAPI GetUserDefaultLangID();
