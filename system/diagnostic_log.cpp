#include "system/diagnostic_log.h"

#include <windows.h>

#include <string>

#include "base/handles.h"

namespace veltra {
namespace {

constexpr LONGLONG kLargestLog = 150 << 10;  // bytes; a longer file becomes the previous generation
constexpr size_t kTagWidth = 19;
constexpr size_t kLongestMessage = 64 << 10;  // characters; the rest is left out

UniqueFile OpenShared(const WideText& path, DWORD disposition) {
  return UniqueFile(CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
}

bool IsTooLarge(const UniqueFile& file) {
  LARGE_INTEGER size = {};
  return GetFileSizeEx(file.Get(), &size) && size.QuadPart > kLargestLog;
}

WideText TimePrefix() {
  SYSTEMTIME now = {};
  GetLocalTime(&now);
  return FormatText(TEXT("%c%02d %02d%02d%02d %d "), 'a' + now.wMonth - 1, now.wDay, now.wHour, now.wMinute,
                    now.wSecond, now.wMilliseconds / 100);
}

// Blanks at the even positions, full stops at the odd ones, the tag over their start.
WideText TagField(const WideText& tag) {
  WideText field = tag;
  while (field.size() < kTagWidth) field.push_back(field.size() % 2 == 0 ? ' ' : '.');
  return field;
}

void Append(const UniqueFile& file, WideView text) {
  std::string bytes;
  for (const WideChar c : text) bytes.push_back(static_cast<char>(c & 0xFF));
  DWORD written = 0;
  WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

}  // namespace

DiagnosticLog::DiagnosticLog(const WideText& folder)
    : LogPath(folder + TEXT("DevLog.txt")),
      PreviousPath(folder + TEXT("DevLog_pt2.txt")),
      MarkerPath(folder + TEXT("logon.txt")) {}

void DiagnosticLog::Write(const WideText& tag, const WideText& message) {
  if (!Enabled) return;
  UniqueFile file = OpenShared(LogPath, OPEN_ALWAYS);
  if (!file) return;
  if (IsTooLarge(file)) {
    file.Reset();
    if (!CopyFileW(LogPath.c_str(), PreviousPath.c_str(), FALSE)) return;
    file = OpenShared(LogPath, CREATE_ALWAYS);
    if (!file) return;
  }
  SetFilePointerEx(file.Get(), {}, nullptr, FILE_END);
  for (const WideText& piece : {TimePrefix(), TagField(tag), WideText(TEXT(" ")),
                                message.substr(0, kLongestMessage), WideText(TEXT("\r\n"))})
    Append(file, piece);
}

void DiagnosticLog::WriteError(const WideText& tag, const WideText& message) {
  Write(tag, TEXT(">_<    ") + message);
}

void DiagnosticLog::WriteDetail(const WideText& tag, const WideText& message) {
  if (OpenShared(MarkerPath, OPEN_EXISTING)) Write(tag, TEXT("***    ") + message);
}

}  // namespace veltra
