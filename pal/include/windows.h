// The part of the Windows API that the tool calls, for hosts that are not Windows. Signatures and values are
// those of Windows; what is not here, the layer does not know.
#pragma once

#include "windef.h"
#include "winerror.h"
#include "winbase.h"
#include "wingdi.h"
#include "winuser.h"
#include "winnls.h"
#include "winver.h"
#include "winreg.h"
