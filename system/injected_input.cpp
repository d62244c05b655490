#include "system/injected_input.h"

namespace veltra {

void InjectKey(int32_t virtualKey, bool down) {
  const UINT scan = MapVirtualKeyExW(static_cast<UINT>(virtualKey), MAPVK_VK_TO_VSC, GetKeyboardLayout(0));
  keybd_event(static_cast<BYTE>(virtualKey), static_cast<BYTE>(scan), down ? 0 : KEYEVENTF_KEYUP, 0);
}

}  // namespace veltra
