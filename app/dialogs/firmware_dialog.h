// What the person sees of a firmware update: the choice of the file and the Firmware dialog. Once it is shown
// there is no way back but the power-off after its OK.
#pragma once

#include <windows.h>

#include "base/text.h"

namespace veltra {

// Creates the dialog, hidden, for the life of the program.
void CreateFirmwareDialog();

// Lets the person choose a HEX file and starts the update with it; nothing when they cancel.
void ChooseFirmwareFile();

// Shows the dialog and starts the update. While one runs another one is refused, with a line in the log.
void StartFirmwareUpdate(const WideText& path);
// The path as another program hands it over: UTF-16 with a terminator.
void StartFirmwareUpdate(Bytes copiedPath);

}  // namespace veltra
