// The version of Windows, folders of the shell and common controls.
#include <commctrl.h>
#include <shlobj.h>

#include <algorithm>

#include "pal/machine/state.h"

using namespace pal;

namespace {

// Every field of a version has three bits of the condition mask, at a place of its own.
constexpr int kConditionBits = 3;
constexpr ULONGLONG kConditionMask = 7;

struct VersionField {
  DWORD type;
  int place;
};
constexpr VersionField kVersionFields[] = {
    {VER_MINORVERSION, 0}, {VER_MAJORVERSION, 1}, {VER_SERVICEPACKMINOR, 4}, {VER_SERVICEPACKMAJOR, 5}};

int PlaceOf(DWORD type) {
  const auto* field = std::ranges::find(kVersionFields, type, &VersionField::type);
  if (field == std::end(kVersionFields)) Die("a field of the Windows version that the layer does not know");
  return field->place;
}

struct Comparison {
  DWORD type;
  DWORD actual;
  DWORD wanted;
};

// Whether a field that differs meets its condition. For the orders it settles the test: lesser fields do not
// count.
bool Meets(DWORD actual, DWORD wanted, BYTE condition) {
  if (condition != VER_GREATER_EQUAL) Die("an unknown condition on the Windows version");
  return actual >= wanted;
}

}  // namespace

ULONGLONG WINAPI VerSetConditionMask(ULONGLONG conditions, DWORD typeMask, BYTE condition) {
  return conditions | (condition & kConditionMask) << (PlaceOf(typeMask) * kConditionBits);
}

BOOL WINAPI VerifyVersionInfoW(LPOSVERSIONINFOEXW version, DWORD typeMask, DWORDLONG conditions) {
  const Call call("VerifyVersionInfoW");
  if (call.Fails()) return FALSE;
  if (version->dwOSVersionInfoSize != sizeof(OSVERSIONINFOEXW)) return Refuse(ERROR_INVALID_PARAMETER, FALSE);
  const WindowsVersion& windows = call->system.version;
  const Comparison comparisons[] = {
      {VER_MAJORVERSION, windows.major, version->dwMajorVersion},
      {VER_MINORVERSION, windows.minor, version->dwMinorVersion},
      {VER_SERVICEPACKMAJOR, windows.servicePack, version->wServicePackMajor},
      {VER_SERVICEPACKMINOR, 0, version->wServicePackMinor},
  };
  DWORD known = 0;
  for (const Comparison& one : comparisons) known |= one.type;
  if ((typeMask & ~known) != 0) Die("VerifyVersionInfoW of a field that the layer does not know");
  if (typeMask == 0) return Refuse(ERROR_INVALID_PARAMETER, FALSE);
  bool holds = true;
  for (const Comparison& one : comparisons) {
    if ((typeMask & one.type) == 0) continue;
    const auto condition =
        static_cast<BYTE>(conditions >> (PlaceOf(one.type) * kConditionBits) & kConditionMask);
    holds = Meets(one.actual, one.wanted, condition);
    if (one.actual != one.wanted) break;
  }
  return holds ? TRUE : Refuse(ERROR_OLD_WIN_VERSION, FALSE);
}

HRESULT WINAPI SHGetFolderPathW(HWND /*owner*/, int folder, HANDLE token, DWORD flags, LPWSTR path) {
  const Call call("SHGetFolderPathW");
  constexpr HRESULT kFileNotFound = static_cast<HRESULT>(0x80070000 | ERROR_FILE_NOT_FOUND);
  if ((folder & ~CSIDL_FLAG_CREATE) != CSIDL_COMMON_DOCUMENTS || token || flags != SHGFP_TYPE_CURRENT)
    Die("SHGetFolderPathW: only the common documents are known");
  if (call.Fails()) return E_FAIL;
  *path = 0;
  const Disk& disk = call->disk;
  const bool exists = disk.Locate(Disk::kCommonDocuments).isDirectory;
  if (!exists && (folder & CSIDL_FLAG_CREATE) == 0) return kFileNotFound;
  if (!exists) disk.MakeDirectories(Disk::kCommonDocuments);
  *std::ranges::copy(Disk::kCommonDocuments, path).out = 0;
  return S_OK;
}

// The classes of common controls are always there.
void WINAPI InitCommonControls() {}
