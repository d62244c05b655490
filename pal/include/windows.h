// The part of the Windows API that the tool calls, for hosts that are not Windows. Signatures and values are
// those of Windows; what is not here, the layer does not know.
#pragma once

#include "windef.h"

#include "winbase.h"
#include "wincon.h"
#include "winerror.h"
#include "wingdi.h"
#include "winnls.h"
#include "winreg.h"
#include "winuser.h"
#include "winver.h"
