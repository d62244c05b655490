#include "system/send_while_alive.h"

namespace veltra {

bool SendWhileAlive(HWND receiver, UINT message, WPARAM wParam, LPARAM lParam) {
  constexpr UINT kHungAfterMs = 5000;
  DWORD_PTR result = 0;
  return SendMessageTimeoutW(receiver, message, wParam, lParam, SMTO_ABORTIFHUNG | SMTO_NOTIMEOUTIFNOTHUNG,
                             kHungAfterMs, &result) != 0;
}

}  // namespace veltra
