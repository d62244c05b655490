#include "system/send_while_alive.h"

namespace veltra {
namespace {

// Whether who sent what is handled now waits for the answer.
bool IsAwaited() {
  return (InSendMessageEx(nullptr) & (ISMEX_SEND | ISMEX_REPLIED)) == ISMEX_SEND;
}

}  // namespace

bool SendWhileAlive(HWND receiver, UINT message, WPARAM wParam, LPARAM lParam) {
  constexpr UINT kHungAfterMs = 5000;
  const UINT whenHung = IsAwaited() ? 0 : SMTO_ABORTIFHUNG;
  DWORD_PTR result = 0;
  return SendMessageTimeoutW(receiver, message, wParam, lParam, whenHung | SMTO_NOTIMEOUTIFNOTHUNG,
                             kHungAfterMs, &result) != 0;
}

}  // namespace veltra
