#include "plugins/macro/macro_editor.h"

#include <algorithm>

#include "plugins/macro/macro_ansi.h"
#include "plugins/macro/macro_editor_ids.h"
#include "plugins/macro/macro_keys.h"
#include "plugins/macro/macro_text.h"

namespace macro {
namespace {

using veltra::WideText;
using veltra::WideView;

struct Editor {
  HINSTANCE instance = nullptr;
  WideText text;
};

struct Objection {
  UINT text = 0;  // what is wrong
  size_t at = 0;
  size_t length = 0;
};

struct MistakeRow {
  Mistake mistake;
  UINT text;
};
constexpr MistakeRow kMistakeTexts[] = {
    {Mistake::kNotClosed, IDS_NOT_CLOSED},   {Mistake::kNotOpened, IDS_NOT_OPENED},
    {Mistake::kUnknownKey, IDS_UNKNOWN_KEY}, {Mistake::kNotAModifier, IDS_NOT_A_MODIFIER},
    {Mistake::kBadNumber, IDS_BAD_NUMBER},   {Mistake::kTooLong, IDS_PAUSES_TOO_LONG},
};

UINT TextOf(Mistake mistake) {
  return std::ranges::find(kMistakeTexts, mistake, &MistakeRow::mistake)->text;
}

std::optional<Objection> FindObjection(WideView text) {
  if (const auto mistake = ParseMacro(text).mistake)
    return Objection{TextOf(mistake->mistake), mistake->at, mistake->length};
  if (const auto at = FindForeignCharacter(text)) return Objection{IDS_FOREIGN_CHARACTER, *at, 1};
  const size_t length = FitForProfile(text).size();
  if (length <= kLongestMacro) return std::nullopt;
  const size_t kept = text.size() - std::min(text.size(), length - kLongestMacro);
  return Objection{IDS_TEXT_TOO_LONG, kept, text.size() - kept};
}

WideText LoadText(HINSTANCE instance, UINT id) {
  WCHAR text[256] = {};
  const int length = LoadStringW(instance, id, text, static_cast<int>(std::size(text)));
  return {text, static_cast<size_t>(std::max(length, 0))};
}

WideText TextIn(HWND control) {
  WideText text(static_cast<size_t>(GetWindowTextLengthW(control)) + 1, 0);
  text.resize(static_cast<size_t>(GetWindowTextW(control, text.data(), static_cast<int>(text.size()))));
  return text;
}

void ShowObjection(HWND dialog, const Editor& editor, const Objection& objection) {
  const WideText place = veltra::FormatText(LoadText(editor.instance, IDS_PLACE), objection.at + 1);
  SetDlgItemTextW(dialog, IDC_MISTAKE, (place + LoadText(editor.instance, objection.text)).c_str());
  const HWND edit = GetDlgItem(dialog, IDC_MACRO);
  SetFocus(edit);
  SendMessageW(edit, EM_SETSEL, objection.at, static_cast<LPARAM>(objection.at + objection.length));
  SendMessageW(edit, EM_SCROLLCARET, 0, 0);
}

void Confirm(HWND dialog, Editor& editor) {
  const WideText text = TextIn(GetDlgItem(dialog, IDC_MACRO));
  if (const auto objection = FindObjection(text)) return ShowObjection(dialog, editor, *objection);
  editor.text = FitForProfile(text);
  EndDialog(dialog, IDOK);
}

void FillKeys(HWND list, bool dutch) {
  for (const KeyName& key : KeyNames())
    SendMessageW(list, CB_ADDSTRING, 0,
                 reinterpret_cast<LPARAM>(veltra::Widen(dutch ? key.dutch : key.english).c_str()));
  SendMessageW(list, CB_SETCURSEL, 0, 0);
}

void InsertKey(HWND dialog) {
  const WideText key = TEXT("{") + TextIn(GetDlgItem(dialog, IDC_KEYS)) + TEXT("}");
  const HWND edit = GetDlgItem(dialog, IDC_MACRO);
  SendMessageW(edit, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(key.c_str()));
  SetFocus(edit);
}

void Open(HWND dialog, const Editor& editor) {
  SetWindowLongPtrW(dialog, DWLP_USER, reinterpret_cast<LONG_PTR>(&editor));
  SendDlgItemMessageW(dialog, IDC_MACRO, EM_LIMITTEXT, kLongestMacro, 0);
  SetDlgItemTextW(dialog, IDC_MACRO, editor.text.c_str());
  SendDlgItemMessageW(dialog, IDC_MACRO, EM_SETSEL, editor.text.size(),
                      static_cast<LPARAM>(editor.text.size()));
  SetFocus(GetDlgItem(dialog, IDC_MACRO));
  FillKeys(GetDlgItem(dialog, IDC_KEYS), LoadText(editor.instance, IDS_DUTCH_KEY_NAMES) == TEXT("1"));
}

void OnCommand(HWND dialog, WORD control, WORD notification) {
  auto* const editor = reinterpret_cast<Editor*>(GetWindowLongPtrW(dialog, DWLP_USER));
  if (control == IDC_INSERT) InsertKey(dialog);
  if (control == IDC_MACRO && notification == EN_CHANGE) SetDlgItemTextW(dialog, IDC_MISTAKE, TEXT(""));
  if (control == IDOK && editor) Confirm(dialog, *editor);
  if (control == IDCANCEL) EndDialog(dialog, IDCANCEL);
}

INT_PTR CALLBACK EditorProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) {
    Open(dialog, *reinterpret_cast<const Editor*>(lParam));
    return FALSE;  // the keyboard is where it shall be
  }
  if (message != WM_COMMAND) return FALSE;
  OnCommand(dialog, LOWORD(wParam), HIWORD(wParam));
  return TRUE;
}

}  // namespace

std::optional<WideText> EditMacro(HINSTANCE instance, HWND owner, WideView text) {
  Editor editor = {instance, WideText(text)};
  const INT_PTR result = DialogBoxParamW(instance, MAKEINTRESOURCEW(IDD_MACRO_EDITOR), owner, EditorProc,
                                         reinterpret_cast<LPARAM>(&editor));
  if (result != IDOK) return std::nullopt;
  return editor.text;
}

}  // namespace macro
