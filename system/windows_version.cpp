#include "system/windows_version.h"

#include <vector>

namespace veltra {
namespace {

constexpr WORD kUnicodeCodePage = 1200;  // 0x04B0

WideText QueryText(const std::vector<uint8_t>& version, const WideText& path) {
  void* text = nullptr;
  UINT length = 0;  // in characters, the terminator included
  if (!VerQueryValueW(version.data(), path.c_str(), &text, &length)) return {};
  const WideView all(static_cast<const WCHAR*>(text), length);
  return WideText(all.substr(0, all.find(WCHAR{})));
}

WideText FileVersionPath(WORD language, WORD codePage) {
  return FormatText(TEXT("\\StringFileInfo\\%04X%04X\\FileVersion"), language, codePage);
}

WideText FileVersionInFirstTranslation(const std::vector<uint8_t>& version) {
  void* translation = nullptr;
  UINT size = 0;  // in bytes
  if (!VerQueryValueW(version.data(), TEXT("\\VarFileInfo\\Translation"), &translation, &size)) return {};
  if (size < 2 * sizeof(WORD)) return {};
  const auto* pair = static_cast<const WORD*>(translation);
  return QueryText(version, FileVersionPath(pair[0], pair[1]));
}

}  // namespace

bool IsWindowsVersionAtLeast(DWORD major, DWORD minor) {
  OSVERSIONINFOEXW wanted = {};
  wanted.dwOSVersionInfoSize = sizeof(wanted);
  wanted.dwMajorVersion = major;
  wanted.dwMinorVersion = minor;
  DWORDLONG condition = 0;
  for (const DWORD field : {VER_MAJORVERSION, VER_MINORVERSION, VER_SERVICEPACKMAJOR})
    condition = VerSetConditionMask(condition, field, VER_GREATER_EQUAL);
  return VerifyVersionInfoW(&wanted, VER_MAJORVERSION | VER_MINORVERSION | VER_SERVICEPACKMAJOR, condition) !=
         FALSE;
}

bool IsWindows7OrLater() {
  return IsWindowsVersionAtLeast(6, 1);
}

WideText GetOwnFileVersion() {
  WCHAR path[MAX_PATH] = {};
  if (GetModuleFileNameW(nullptr, path, MAX_PATH) == 0) return {};
  DWORD ignored = 0;
  std::vector<uint8_t> version(GetFileVersionInfoSizeW(path, &ignored));
  if (version.empty() || !GetFileVersionInfoW(path, 0, static_cast<DWORD>(version.size()), version.data()))
    return {};
  const WideText text = FileVersionInFirstTranslation(version);
  return !text.empty() ? text : QueryText(version, FileVersionPath(GetUserDefaultLangID(), kUnicodeCodePage));
}

}  // namespace veltra
