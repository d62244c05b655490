#include "system/sent_messages.h"

#include <windows.h>

#include "system/system_state.h"

namespace veltra {

void ServeSentMessages() {
  const HWND window = MainWindow();
  MSG message = {};
  // Whatever it looks for, it first has everything handled that was sent.
  PeekMessageW(&message, window, WM_ENDSESSION, WM_ENDSESSION, PM_NOREMOVE);
  System();
  if (window && !IsWindow(window)) throw StateEnded();
}

}  // namespace veltra
