#include "link/infrared.h"

#include "base/debug_output.h"
#include "base/handles.h"
#include "link/link_state.h"
#include "link/send_queue.h"
#include "system/system_state.h"

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
  LinkState& link = Link();
  link.irCode.assign(code.begin(), code.end());
  const WideText path = DataFolder() + TEXT("ir.txt");
  const WideText shown = Widen(TextOf(code.first(std::min(code.size(), kShownBytes))));
  MessageBoxW(MainWindow(), FormatText(TEXT("IRRecord received (%s)"), shown).c_str(), TEXT("IRRecord"),
              MB_OK);

  const UniqueFile file(
      CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
  if (!file) return;
  DWORD written = 0;
  WriteFile(file.Get(), link.irCode.data(), static_cast<DWORD>(link.irCode.size()), &written, nullptr);
}

}  // namespace veltra
