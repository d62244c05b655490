// Device notifications, as WM_DEVICECHANGE carries them.
#pragma once

#include "windef.h"

#define DBT_DEVICEARRIVAL 0x8000
#define DBT_DEVICEREMOVECOMPLETE 0x8004

#define DBT_DEVTYP_PORT 0x00000003

struct DEV_BROADCAST_HDR {
  DWORD dbch_size;
  DWORD dbch_devicetype;
  DWORD dbch_reserved;
};

// The name runs on after the structure; dbcp_size counts it.
struct DEV_BROADCAST_PORT_W {
  DWORD dbcp_size;
  DWORD dbcp_devicetype;
  DWORD dbcp_reserved;
  WCHAR dbcp_name[1];
};
