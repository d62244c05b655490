// What the tool is to Windows: its module and window, its language, its place in the notification area, its
// folder and its log: the room's record.
#pragma once

#include <windows.h>

#include <memory>
#include <set>
#include <vector>

#include "base/record.h"
#include "base/text.h"
#include "system/com_library.h"
#include "system/diagnostic_log.h"
#include "system/folders.h"
#include "system/message_box.h"
#include "system/tray_icons.h"

namespace veltra {

struct LanguageEntry {
  WideText name;  // in its own language; also part of file names
  LANGID id = 0;
};

struct SystemState {
  HINSTANCE hInstance = nullptr;
  HWND hMainWnd = nullptr;
  std::shared_ptr<ComLibrary> com;  // who is at work with an object of it holds it too
  TrayState tray;
  std::set<BoxKind> standingBoxes;       // message boxes that wait for the person
  const WCHAR* inputObstacle = nullptr;  // why Windows kept the latest injected input, and that was logged
  bool Suspended = false;                // from the suspend notification until the resume has been handled
  DWORD suspendedAt = 0;                 // by GetTickCount

  LANGID CurrentLangID = MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_UK);
  std::vector<LanguageEntry> Languages = {{TEXT("English"), MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_UK)},
                                          {TEXT("Nederlands"), MAKELANGID(LANG_DUTCH, SUBLANG_DUTCH)}};

  WideText dataFolder = GetDataFolder();  // with a trailing backslash
  DiagnosticLog log = DiagnosticLog(dataFolder);
};

inline SystemState& System() {
  return RecordOf<SystemState>();
}

// What the other rooms take of it.
inline HWND MainWindow() {
  return System().hMainWnd;
}
inline DiagnosticLog& Log() {
  return System().log;
}
inline const WideText& DataFolder() {
  return System().dataFolder;
}
inline bool IsSuspended() {
  return System().Suspended;
}

}  // namespace veltra
