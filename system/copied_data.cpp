#include "system/copied_data.h"

#include <vector>

#include "system/send_while_alive.h"
#include "system/system_state.h"

namespace veltra {
namespace {

// A receiver may send the tool a request while it handles an answer. One that always does would use up the
// stack.
constexpr int kMostAtATime = 8;
int atWork = 0;

struct AtWork {
  AtWork() { ++atWork; }
  ~AtWork() { --atWork; }
  AtWork(const AtWork&) = delete;
  AtWork& operator=(const AtWork&) = delete;
};

}  // namespace

bool SendCopiedData(HWND receiver, ULONG_PTR tag, Bytes data) {
  const HWND mainWindow = MainWindow();
  if (!IsWindow(receiver) || receiver == mainWindow || atWork == kMostAtATime) return false;
  const AtWork working;
  std::vector<uint8_t> copy(data.begin(), data.end());
  COPYDATASTRUCT copied = {};
  copied.dwData = tag;
  copied.cbData = static_cast<DWORD>(copy.size());
  copied.lpData = copy.data();
  return SendWhileAlive(receiver, WM_COPYDATA, reinterpret_cast<WPARAM>(mainWindow),
                        reinterpret_cast<LPARAM>(&copied));
}

}  // namespace veltra
