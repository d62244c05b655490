#include "link/infrared.h"

#include "app/app_state.h"
#include "base/debug_output.h"
#include "base/handles.h"
#include "link/send_queue.h"

namespace veltra {

void ForwardInfraredRequest(HWND asker, Bytes request) {
  Trace(TEXT("Veltratool received IR request"));
  EnqueueRequest(asker, request, MessageType::kText);
  Trace(TEXT("Veltratool forwarded IR request to PIC"));
}

void ForwardInfraredCancel(HWND asker, Bytes request) {
  Trace(TEXT("Veltratool received IR cancel request"));
  ClearPicQueue();
  EnqueueRequest(asker, request, MessageType::kText);
  Trace(TEXT("Veltratool forwarded IR request to PIC"));
}

void StoreInfraredRecording(Bytes code) {
  constexpr size_t kShownBytes = 20;
  AppState& state = GetAppState();
  state.irCode.assign(code.begin(), code.end());
  const WideText shown = Widen(TextOf(code.first(std::min(code.size(), kShownBytes))));
  MessageBoxW(state.hMainWnd, FormatText(TEXT("IRRecord received (%s)"), shown).c_str(), TEXT("IRRecord"),
              MB_OK);

  const UniqueFile file(CreateFileW((state.dataFolder + TEXT("ir.txt")).c_str(), GENERIC_WRITE, 0, nullptr,
                                    CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) return;
  DWORD written = 0;
  WriteFile(file.Get(), state.irCode.data(), static_cast<DWORD>(state.irCode.size()), &written, nullptr);
}

}  // namespace veltra
