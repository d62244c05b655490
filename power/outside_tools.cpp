#include "power/outside_tools.h"

#include <windows.h>

#include <shellapi.h>

#include "base/handles.h"
#include "system/folders.h"
#include "system/registry.h"
#include "system/start_program.h"

namespace veltra {
namespace {

constexpr DWORD kToggleMs = 5000;

struct PowerFlag {
  const WCHAR* key;
  const WCHAR* value;
};

constexpr PowerFlag kPowerFlags[] = {
    {TEXT("SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Power"), TEXT("HiberbootEnabled")},
    {TEXT("SYSTEM\\CurrentControlSet\\Enum\\PCI\\VEN_8086&DEV_9C3A&SUBSYS_72708086&REV_04\\3&11583659&0&"
          "B0\\Device "
          "Parameters\\WDF"),
     TEXT("IdleInWorkingState")},
};

bool IsOn(const PowerFlag& flag) {
  const UniqueRegistryKey key = OpenRegistryKey(HKEY_LOCAL_MACHINE, flag.key);
  const auto number = key ? ReadRegistryNumber(key, flag.value) : std::nullopt;
  return number && number->type == REG_DWORD && number->value == 1;
}

// A tool that is missing starts in silence, and nothing of that name is started from elsewhere. Null then,
// and when it is not a process of its own.
UniqueKernelObject Start(const WCHAR* name, const WCHAR* verb, const WideText& parameters, bool inItsFolder) {
  const WideText folder = ModuleDirectory();
  if (folder.empty()) return {};
  const WideText program = folder + name;
  SHELLEXECUTEINFOW execute = {};
  execute.cbSize = sizeof(execute);
  execute.fMask = SEE_MASK_NOCLOSEPROCESS | SEE_MASK_FLAG_NO_UI;
  execute.lpVerb = verb;
  execute.lpFile = program.c_str();
  execute.lpParameters = parameters.c_str();
  if (inItsFolder) execute.lpDirectory = folder.c_str();
  execute.nShow = SW_SHOWNORMAL;
  const PlainErrorMode forTheProgram;
  return UniqueKernelObject(ShellExecuteExW(&execute) ? execute.hProcess : nullptr);
}

}  // namespace

void SetBrightness(int32_t level) {
  Start(TEXT("nircmd.exe"), nullptr, FormatText(TEXT("setbrightness %d"), level), true);
}

void RunFlagToggler(const WideText& keyName, const WideText& valueName) {
  const UniqueKernelObject process =
      Start(TEXT("FlagToggler.exe"), TEXT("runas"),
            FormatText(TEXT("OurQuietSmallMarker -KeyName \"%s\" -ValueName \"%s\" -SetValue %d"), keyName,
                       valueName, 0),
            false);
  if (process) WaitForSingleObject(process.Get(), kToggleMs);
}

void CheckPowerFlags() {
  for (const PowerFlag& flag : kPowerFlags)
    if (IsOn(flag)) RunFlagToggler(flag.key, flag.value);
}

}  // namespace veltra
