#include "system/maker_applications.h"

#include "system/send_while_alive.h"

namespace veltra {

void SendCommand(const WCHAR* windowClass, UINT message, int32_t command) {
  if (const HWND application = FindWindowW(windowClass, nullptr))
    SendWhileAlive(application, message, static_cast<WPARAM>(command), 0);
}

void SendToTalkBuilder(ULONG_PTR tag, const void* data, size_t size) {
  const HWND application = FindWindowW(kTalkBuilder4Class, nullptr);
  if (!application) return;
  COPYDATASTRUCT copy = {};
  copy.dwData = tag;
  copy.cbData = static_cast<DWORD>(size);
  copy.lpData = const_cast<void*>(data);
  SendWhileAlive(application, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&copy));
}

}  // namespace veltra
