// Dialogs: DIALOG and DIALOGEX scripts to dialog templates of both forms.
#include <algorithm>
#include <optional>

#include "pal/resource_parser.h"

namespace pal {
namespace {

constexpr uint32_t kChild = 0x40000000;
constexpr uint32_t kVisible = 0x10000000;
constexpr uint32_t kPopup = 0x80000000;
constexpr uint32_t kBorder = 0x00800000;
constexpr uint32_t kCaption = 0x00C00000;
constexpr uint32_t kSystemMenu = 0x00080000;
constexpr uint32_t kGroup = 0x00020000;
constexpr uint32_t kTabStop = 0x00010000;
constexpr uint32_t kDialogSetFont = 0x40;
constexpr uint32_t kStaticIcon = 3;
constexpr uint32_t kComboSimple = 1;
constexpr uint32_t kListNotify = 1;
constexpr uint32_t kDefaultStyle = kPopup | kBorder | kSystemMenu;
constexpr size_t kMostControls = 0xFFFF;

enum class Form { kTextAndFrame, kFrame, kIcon, kAny };

// Window classes that templates name by number.
constexpr uint16_t kButton = 0x80;
constexpr uint16_t kEdit = 0x81;
constexpr uint16_t kStatic = 0x82;
constexpr uint16_t kListBox = 0x83;
constexpr uint16_t kScrollBar = 0x84;
constexpr uint16_t kComboBox = 0x85;

struct ControlWord {
  std::string_view word;
  Form form;
  uint16_t windowClass;
  uint32_t style;         // beside kChild and kVisible
  uint32_t defaultStyle;  // only when the script gives no style
};
constexpr ControlWord kControlWords[] = {
    {"CONTROL", Form::kAny, 0, 0, 0},
    {"LTEXT", Form::kTextAndFrame, kStatic, 0, kGroup},
    {"CTEXT", Form::kTextAndFrame, kStatic, 1, kGroup},
    {"RTEXT", Form::kTextAndFrame, kStatic, 2, kGroup},
    {"PUSHBUTTON", Form::kTextAndFrame, kButton, 0 | kTabStop, 0},
    {"DEFPUSHBUTTON", Form::kTextAndFrame, kButton, 1 | kTabStop, 0},
    {"CHECKBOX", Form::kTextAndFrame, kButton, 2 | kTabStop, 0},
    {"AUTOCHECKBOX", Form::kTextAndFrame, kButton, 3 | kTabStop, 0},
    {"RADIOBUTTON", Form::kTextAndFrame, kButton, 4 | kTabStop, 0},
    {"GROUPBOX", Form::kTextAndFrame, kButton, 7, 0},
    {"AUTORADIOBUTTON", Form::kTextAndFrame, kButton, 9 | kTabStop, 0},
    {"EDITTEXT", Form::kFrame, kEdit, kBorder | kTabStop, 0},
    {"COMBOBOX", Form::kFrame, kComboBox, 0, kComboSimple | kTabStop},
    {"LISTBOX", Form::kFrame, kListBox, kListNotify | kBorder, 0},
    {"SCROLLBAR", Form::kFrame, kScrollBar, 0, 0},
    {"ICON", Form::kIcon, kStatic, kStaticIcon, 0},
};

struct Frame {
  uint16_t x = 0, y = 0, width = 0, height = 0;  // in dialog units
};

struct Control {
  uint32_t helpId = 0;
  uint32_t exStyle = 0;
  uint32_t style = 0;
  Frame frame;
  uint32_t id = 0;
  ResourceName windowClass;
  ResourceName text;
};

struct Font {
  uint16_t size = 0;  // in points
  uint16_t weight = 0;
  uint8_t italic = 0;
  uint8_t characterSet = 1;  // the default one
  std::u16string face;
};

struct Dialog {
  uint32_t helpId = 0;
  uint32_t exStyle = 0;
  std::optional<uint32_t> style;
  Frame frame;
  ResourceName menu;
  ResourceName windowClass;
  std::optional<std::u16string> caption;
  std::optional<Font> font;
  std::vector<Control> controls;
};

// A number, or a text as it is written.
ResourceName TakeCaption(TokenReader& tokens) {
  if (tokens.Peek().kind == Token::Kind::kText) return {tokens.TakeText(), 0};
  return {{}, tokens.TakeWord()};
}

Frame TakeFrame(TokenReader& tokens) {
  Frame frame;
  frame.x = tokens.TakeWord();
  for (uint16_t* part : {&frame.y, &frame.width, &frame.height}) *part = tokens.TakeNextWord();
  return frame;
}

void TakeTail(TokenReader& tokens, bool extended, Control& control) {
  if (!tokens.TakeIf(",")) return;
  control.exStyle = tokens.TakeStyle(0);
  if (extended && tokens.TakeIf(",")) control.helpId = tokens.TakeNumber();
}

Control TakeControl(TokenReader& tokens, bool extended) {
  const auto word =
      std::ranges::find_if(kControlWords, [&](const ControlWord& row) { return tokens.Peek().Is(row.word); });
  if (word == std::end(kControlWords)) tokens.Fail("unknown control");
  tokens.Take();
  Control control;
  control.style = kChild | kVisible | word->style;
  control.windowClass = {{}, word->windowClass};
  if (word->form != Form::kFrame) {
    control.text = word->form == Form::kIcon ? tokens.TakeName() : TakeCaption(tokens);
    tokens.Expect(",");
  }
  control.id = tokens.TakeNumber();
  tokens.Expect(",");
  if (word->form == Form::kAny) {
    control.windowClass = tokens.TakeName();
    tokens.Expect(",");
    control.style = tokens.TakeStyle(control.style);
    tokens.Expect(",");
    control.frame = TakeFrame(tokens);
    TakeTail(tokens, extended, control);
    return control;
  }
  control.frame = TakeFrame(tokens);
  // An icon has the size of its picture.
  if (word->form == Form::kIcon) control.frame.width = control.frame.height = 0;
  if (!tokens.TakeIf(",")) {
    control.style |= word->defaultStyle;
    return control;
  }
  control.style = tokens.TakeStyle(control.style);
  TakeTail(tokens, extended, control);
  return control;
}

Font TakeFont(TokenReader& tokens, bool extended) {
  Font font;
  font.size = tokens.TakeWord();
  tokens.Expect(",");
  font.face = tokens.TakeText();
  if (!extended || !tokens.TakeIf(",")) return font;
  font.weight = tokens.TakeWord();
  if (tokens.TakeIf(",")) font.italic = static_cast<uint8_t>(tokens.TakeWord());
  if (tokens.TakeIf(",")) font.characterSet = static_cast<uint8_t>(tokens.TakeWord());
  return font;
}

// The statements between the frame and the controls.
void TakeStatements(TokenReader& tokens, bool extended, Dialog& dialog, uint16_t& language) {
  for (;;) {
    if (tokens.TakeIf("LANGUAGE"))
      language = tokens.TakeLanguage();
    else if (tokens.TakeIf("STYLE"))
      dialog.style = tokens.TakeStyle(0);
    else if (tokens.TakeIf("EXSTYLE"))
      dialog.exStyle = tokens.TakeStyle(0);
    else if (tokens.TakeIf("CAPTION"))
      dialog.caption = tokens.TakeText();
    else if (tokens.TakeIf("CLASS"))
      dialog.windowClass = tokens.TakeName();
    else if (tokens.TakeIf("MENU"))
      dialog.menu = tokens.TakeName();
    else if (tokens.TakeIf("FONT"))
      dialog.font = TakeFont(tokens, extended);
    else
      return;
  }
}

uint32_t StyleOf(const Dialog& dialog) {
  uint32_t style = dialog.style.value_or(kDefaultStyle);
  if (dialog.caption) style |= kCaption;
  if (dialog.font) style |= kDialogSetFont;
  return style;
}

void WriteFrame(ByteWriter& writer, const Frame& frame) {
  for (const uint16_t part : {frame.x, frame.y, frame.width, frame.height}) writer.Word(part);
}

void WriteHeader(ByteWriter& writer, const Dialog& dialog, bool extended) {
  const uint32_t style = StyleOf(dialog);
  if (extended) {
    writer.Word(1);       // version
    writer.Word(0xFFFF);  // the mark of the extended form
    writer.Dword(dialog.helpId);
    writer.Dword(dialog.exStyle);
    writer.Dword(style);
  } else {
    writer.Dword(style);
    writer.Dword(dialog.exStyle);
  }
  writer.Word(dialog.controls.size());
  WriteFrame(writer, dialog.frame);
  writer.Name(dialog.menu);
  writer.Name(dialog.windowClass);
  writer.Text(dialog.caption.value_or(u""));
  if (!dialog.font) return;
  writer.Word(dialog.font->size);
  if (extended) {
    writer.Word(dialog.font->weight);
    writer.Byte(dialog.font->italic);
    writer.Byte(dialog.font->characterSet);
  }
  writer.Text(dialog.font->face);
}

void WriteControl(ByteWriter& writer, const Control& control, bool extended) {
  writer.AlignTo4();
  if (extended) {
    writer.Dword(control.helpId);
    writer.Dword(control.exStyle);
    writer.Dword(control.style);
  } else {
    writer.Dword(control.style);
    writer.Dword(control.exStyle);
  }
  WriteFrame(writer, control.frame);
  if (extended)
    writer.Dword(control.id);
  else
    writer.Word(control.id);
  writer.Name(control.windowClass);
  writer.Name(control.text);
  writer.Word(0);  // no data for WM_CREATE
}

}  // namespace

std::vector<uint8_t> CompileDialog(TokenReader& tokens, bool extended, uint16_t& language) {
  Dialog dialog;
  dialog.frame = TakeFrame(tokens);
  if (extended && tokens.TakeIf(",")) dialog.helpId = tokens.TakeNumber();
  TakeStatements(tokens, extended, dialog, language);
  tokens.ExpectBegin();
  while (!tokens.TakeIfEnd()) {
    if (dialog.controls.size() == kMostControls) tokens.Fail("too many controls");
    dialog.controls.push_back(TakeControl(tokens, extended));
  }
  ByteWriter writer;
  WriteHeader(writer, dialog, extended);
  for (const Control& control : dialog.controls) WriteControl(writer, control, extended);
  return writer.Take();
}

}  // namespace pal
