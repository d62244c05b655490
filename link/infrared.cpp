#include "link/infrared.h"

#include "base/debug_output.h"
#include "base/whole_file.h"
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
  CancelRequests();
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
  WriteWholeFile(path, link.irCode);
}

}  // namespace veltra
