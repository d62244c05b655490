// The tool's dialogs, used by the person.
#pragma once

#include "pal/machine/person.h"
#include "resources/resource_ids.h"
#include "tests/tool_test.h"

namespace veltra {

namespace person = pal::person;

class DialogTest : public ToolTest {
 protected:
  DialogTest() { SetUserValue(u"StartupDelay", 0); }

  // Starts the tool and opens the dialog behind a menu command.
  void Open(WPARAM command) {
    Start();
    tablet.Advance(5s);  // everything that the start asks is answered
    NewRequests();
    OpenAgain(command);
  }
  void OpenAgain(WPARAM command) {
    mark = tablet.Mark();
    machine.desktop.Post(tablet.MainWindow(), WM_COMMAND, command, 0);
    tablet.Advance(20ms);
  }
  void Settle() { tablet.Advance(50ms); }
  static bool IsOpen() { return person::FrontDialog().has_value(); }
  void PressAndSettle(int id) {
    person::Press(id);
    Settle();
  }

  // The three ways out that store nothing.
  enum class WayOut { kEscape, kCloseBox, kCancel };
  void Leave(WayOut way) {
    if (way == WayOut::kEscape) person::PressKey(VK_ESCAPE);
    if (way == WayOut::kCloseBox) person::CloseDialog();
    if (way == WayOut::kCancel) person::Press(IDCANCEL);
    Settle();
  }
};

}  // namespace veltra
