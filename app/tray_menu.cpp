#include "app/tray_menu.h"

#include "app/app_state.h"
#include "base/handles.h"
#include "resources/resource_ids.h"
#include "system/language.h"

namespace veltra {
namespace {

WideText Capitalized(WideText name) {
  if (!name.empty()) name.front() = UpperAscii(name.substr(0, 1)).front();
  return name;
}

// In front of the placeholder, which goes then.
void FillLanguages(HMENU popup) {
  UINT command = IDC_FIRST_LANGUAGE;
  for (const LanguageEntry& language : System().Languages) {
    const UINT checked = language.id == System().CurrentLangID ? MF_CHECKED : MF_UNCHECKED;
    InsertMenuW(popup, IDC_LANGUAGE_PLACEHOLDER, MF_BYCOMMAND | MF_STRING | checked, command++,
                Capitalized(language.name).c_str());
  }
  DeleteMenu(popup, IDC_LANGUAGE_PLACEHOLDER, MF_BYCOMMAND);
}

}  // namespace

void ShowTrayMenu(HWND window, TrayMenu which) {
  SetForegroundWindow(window);  // else the menu stays open when the user clicks elsewhere
  const Bytes resource = FindLocalResource(RT_MENU, which == TrayMenu::kPower ? IDM_POWER : IDM_TOOL);
  if (resource.empty()) return;
  const UniqueMenu menu(LoadMenuIndirectW(resource.data()));
  const HMENU popup = GetSubMenu(menu.Get(), 0);
  if (!popup) return;
  if (which == TrayMenu::kTool) FillLanguages(popup);
  SetMenuDefaultItem(popup, 0, TRUE);
  POINT cursor = {};
  GetCursorPos(&cursor);
  TrackPopupMenu(popup, TPM_RIGHTALIGN | TPM_BOTTOMALIGN | TPM_RIGHTBUTTON, cursor.x, cursor.y, 0, window,
                 nullptr);
  PostMessageW(window, WM_NULL, 0, 0);  // else the next menu may close at once
}

}  // namespace veltra
