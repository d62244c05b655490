// The switch indicator of the options dialog: two circles that show which switches are held, and the service
// gestures that begin there.
#pragma once

#include <windows.h>

namespace veltra {

// WM_PAINT of the dialog.
void PaintSwitchIndicator(HWND dialog);

// A switch was pressed or released: the dialog, if it is open, paints the indicator again.
void RepaintSwitchIndicator();

// A double click on the indicator: the next of the two steps of the service gesture.
void OnIndicatorDoubleClick(HWND dialog);

// Whether a double click on the controller's version now means the firmware update: with Shift, or after both
// steps of the gesture.
bool MayStartFirmwareUpdate();

}  // namespace veltra
