// The languages of threads and of the user.
#include "pal/machine/state.h"
#include "pal/text/thread_language.h"

using namespace pal;

ThreadLanguage& pal::CurrentThreadLanguage() {
  thread_local ThreadLanguage language;
  return language;
}

BOOL WINAPI SetThreadLocale(LCID locale) {
  const Call call("SetThreadLocale");
  if (call.Fails()) return FALSE;
  if (LANGIDFROMLCID(locale) == 0) return Refuse(ERROR_INVALID_PARAMETER, FALSE);
  CurrentThreadLanguage().locale = locale;
  call->Emit(LanguageSet{LANGIDFROMLCID(locale), true});
  return TRUE;
}

LANGID WINAPI SetThreadUILanguage(LANGID language) {
  const Call call("SetThreadUILanguage");
  if (call.Fails()) return 0;
  if (language == 0) language = kUserLanguage;
  CurrentThreadLanguage().userInterface = language;
  call->Emit(LanguageSet{language});
  return language;
}

LANGID WINAPI GetUserDefaultLangID() {
  return kUserLanguage;
}
