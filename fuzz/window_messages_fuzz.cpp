// Any messages of Windows and of other programs, to the main window and to the dialogs.
#include <cstring>

#include <dbt.h>

#include "fuzz/tablet_for_fuzzing.h"

namespace {

using fuzz::Input;
using fuzz::Tablet;

constexpr UINT kMessages[] = {
    WM_TIMER,
    WM_COMMAND,
    WM_HSCROLL,
    WM_CLOSE,
    WM_DESTROY,
    WM_QUERYENDSESSION,
    WM_ENDSESSION,
    WM_POWERBROADCAST,
    veltra::kPowerIconMessage,
    veltra::kToolIconMessage,
    veltra::WM_PIC_BYTE,
    veltra::WM_PIC_LINE_LOST,
    veltra::WM_FIRMWARE_PROGRESS,
    veltra::WM_QUERY_PIC_FIRMWARE,
    veltra::kDeviceToolRequest,
    veltra::kDeviceReportRequest,
    veltra::kFirmwareFileRequest,
    veltra::kStatusLedRequest,
    veltra::kCodecStatusQuery,
};

HWND FrontDialog() {
  const auto dialog = pal::person::FrontDialog();
  return dialog ? dialog->window : nullptr;
}

HWND Window(Tablet& tablet, Input& input) {
  constexpr HWND (*kWindows[])(Tablet&) = {
      [](Tablet& t) { return t.MainWindow(); },
      [](Tablet&) { return FrontDialog(); },
      [](Tablet& t) { return t.Machine().desktop.ProgramWindow(u"#32770"); },  // shown or not
      [](Tablet& t) { return t.TheDesk().Open("Talk Builder"); },
  };
  return input.Choice(kWindows)(tablet);
}

uint64_t Parameter(Tablet& tablet, Input& input) {
  const uint8_t size = input.Byte() % 10;
  return size <= 8 ? input.Number(size) : reinterpret_cast<uint64_t>(Window(tablet, input));
}

void Send(Tablet& tablet, Input& input) {
  const HWND window = Window(tablet, input);
  const UINT message = input.Choice(kMessages);
  const bool posted = input.Byte() % 2;
  const WPARAM wParam = Parameter(tablet, input);
  const auto lParam =
      static_cast<LPARAM>(message == WM_TIMER ? 0 : Parameter(tablet, input));  // else a procedure
  if (!window || window == tablet.TheDesk().Find("Talk Builder")) return;
  if (posted)
    tablet.Machine().desktop.Post(window, message, wParam, lParam);
  else
    tablet.Machine().desktop.Send(window, message, wParam, lParam);
}

void SendData(Tablet& tablet, Input& input) {
  constexpr uint64_t kOtherTags[] = {veltra::kFirstIdentityUpdate - 1, veltra::kLastIdentityUpdate + 1,
                                     ~uint64_t{0}};
  const HWND sender = Window(tablet, input);
  const uint8_t which = input.Byte() % 16;
  const uint64_t tag = which < 5    ? which
                       : which < 12 ? veltra::kFirstIdentityUpdate + which - 5
                                    : kOtherTags[which % std::size(kOtherTags)];
  tablet.SendData(sender, tag, input.Piece());
}

// A record of a device, as long as it says, but never shorter than what all of them begin with.
void ChangeDevice(Tablet& tablet, Input& input) {
  constexpr WPARAM kEvents[] = {DBT_DEVICEARRIVAL, DBT_DEVICEREMOVECOMPLETE, 7};
  const WPARAM event = input.Choice(kEvents);
  const auto type = static_cast<DWORD>(input.Byte() % 6);
  const auto rest = input.Piece();
  std::vector<DEV_BROADCAST_HDR> record(1 + rest.size() / sizeof(DEV_BROADCAST_HDR) + 1);
  record[0].dbch_size = static_cast<DWORD>(sizeof record[0] + rest.size());
  record[0].dbch_devicetype = type;
  if (!rest.empty()) std::memcpy(&record[1], rest.data(), rest.size());
  tablet.Ask(WM_DEVICECHANGE, event, reinterpret_cast<LPARAM>(record.data()));
}

constexpr fuzz::Act kActs[] = {Send, SendData, ChangeDevice};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  fuzz::PlayOnNewTablet(data, size, kActs);
  return 0;
}
