// The machine's registry, disk, resources and modules.
#pragma once

#include "pal/kernel/modules.h"
#include "pal/resources/resource_table.h"
#include "pal/store/disk.h"
#include "pal/store/registry_store.h"

namespace pal {

struct WindowsVersion {
  WORD major = 6;
  WORD minor = 1;
  WORD servicePack = 1;
};

struct DataState {
  RegistryStore registry;
  Disk disk;
  ResourceTable resources;
  Modules modules;
  WindowsVersion windowsVersion;
  bool isWow64 = false;  // the program is a 32-bit one, Windows is not
};

}  // namespace pal
