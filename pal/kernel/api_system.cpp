// The version of Windows, folders of the shell and common controls.
#include <commctrl.h>
#include <shlobj.h>

#include <algorithm>
#include <tuple>

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
    {VER_MINORVERSION, 0}, {VER_MAJORVERSION, 1}, {VER_SERVICEPACKMAJOR, 5}};

int PlaceOf(DWORD type) {
  const auto* field = std::ranges::find(kVersionFields, type, &VersionField::type);
  if (field == std::end(kVersionFields)) Die("a field of the Windows version that the layer does not know");
  return field->place;
}

}  // namespace

ULONGLONG WINAPI VerSetConditionMask(ULONGLONG conditions, DWORD typeMask, BYTE condition) {
  return conditions | (condition & kConditionMask) << (PlaceOf(typeMask) * kConditionBits);
}

BOOL WINAPI VerifyVersionInfoW(LPOSVERSIONINFOEXW version, DWORD typeMask, DWORDLONG conditions) {
  const Call call("VerifyVersionInfoW");
  if (call.Fails()) return FALSE;
  constexpr DWORD kFields = VER_MAJORVERSION | VER_MINORVERSION | VER_SERVICEPACKMAJOR;
  ULONGLONG atLeast = 0;
  for (const VersionField& field : kVersionFields)
    atLeast = VerSetConditionMask(atLeast, field.type, VER_GREATER_EQUAL);
  if (typeMask != kFields || conditions != atLeast) Die("VerifyVersionInfoW of anything but a least version");
  const WindowsVersion& is = call->system.version;
  const bool holds = std::tuple(is.major, is.minor, is.servicePack) >=
                     std::tuple(version->dwMajorVersion, version->dwMinorVersion, version->wServicePackMajor);
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
