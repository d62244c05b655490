#include "system/message_box.h"

#include "system/system_state.h"

namespace veltra {

int ShowMessageBox(BoxKind kind, HWND owner, const WideText& text, const WideText& caption, UINT type) {
  std::set<BoxKind>& standing = System().standingBoxes;
  if (!standing.insert(kind).second) return 0;
  const int answer = MessageBoxW(owner, text.c_str(), caption.c_str(), type);
  standing.erase(kind);
  return answer;
}

}  // namespace veltra
