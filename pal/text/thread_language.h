// The languages of the calling thread and of the user.
#pragma once

#include <windows.h>

namespace pal {

inline constexpr LANGID kUserLanguage = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_UK);

struct ThreadLanguage {
  LCID locale = MAKELCID(kUserLanguage, SORT_DEFAULT);
  LANGID userInterface = kUserLanguage;
};
ThreadLanguage& CurrentThreadLanguage();

}  // namespace pal
