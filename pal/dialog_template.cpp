#include "pal/dialog_template.h"

#include <cstring>

#include "pal/die.h"

namespace pal {
namespace {

constexpr DWORD kExtendedForm = 0xFFFF0001;
constexpr DWORD kHasFont = 0x40;
constexpr WORD kNumberFollows = 0xFFFF;

// Pixels for 4 horizontal and 8 vertical dialog units: those of the usual font.
constexpr int kBaseWidth = 6;
constexpr int kBaseHeight = 13;

std::u16string ClassOfNumber(WORD number) {
  switch (number) {
    case 0x80:
      return u"Button";
    case 0x81:
      return u"Edit";
    case 0x82:
      return u"Static";
    case 0x85:
      return u"ComboBox";
    default:
      Die("a dialog control of an unknown class");
  }
}

class Reader {
 public:
  explicit Reader(const void* data) : start_(static_cast<const uint8_t*>(data)), at_(start_) {}

  WORD Word() { return Take<WORD>(); }
  DWORD Dword() { return Take<DWORD>(); }
  void Skip(size_t bytes) { at_ += bytes; }
  void AlignTo4() { at_ += (4 - (at_ - start_) % 4) % 4; }

  std::u16string Text() {
    std::u16string text;
    while (const WORD unit = Word()) text.push_back(unit);
    return text;
  }
  // A menu, or the class of the dialog itself: none.
  void Nothing() {
    if (Word() != 0) Die("a dialog template with a menu or a class");
  }
  std::u16string ClassName() { return IsNumber() ? ClassOfNumber(Word()) : Text(); }
  // The caption of a control; a picture's number is no text.
  std::u16string Caption() {
    if (!IsNumber()) return Text();
    Word();
    return {};
  }
  RECT Rect() {
    const int x = Pixels(kBaseWidth, 4);
    const int y = Pixels(kBaseHeight, 8);
    const int width = Pixels(kBaseWidth, 4);
    const int height = Pixels(kBaseHeight, 8);
    return {x, y, x + width, y + height};
  }

 private:
  template <class Number>
  Number Take() {
    Number number;
    std::memcpy(&number, at_, sizeof(number));
    at_ += sizeof(number);
    return number;
  }
  bool IsNumber() {
    WORD first;
    std::memcpy(&first, at_, sizeof(first));
    if (first != kNumberFollows) return false;
    Word();
    return true;
  }
  int Pixels(int base, int units) { return (static_cast<SHORT>(Word()) * base + units / 2) / units; }

  const uint8_t* start_;
  const uint8_t* at_;
};

TemplateControl ReadControl(Reader& reader) {
  TemplateControl control;
  reader.AlignTo4();
  reader.Dword();  // help
  control.exStyle = reader.Dword();
  control.style = reader.Dword();
  control.rect = reader.Rect();
  control.id = reader.Dword();
  control.windowClass = reader.ClassName();
  control.text = reader.Caption();
  reader.Skip(reader.Word());  // data for WM_CREATE
  return control;
}

}  // namespace

DialogTemplate ReadDialogTemplate(const void* data) {
  Reader reader(data);
  DialogTemplate dialog;
  if (reader.Dword() != kExtendedForm) Die("a dialog template of the old form");
  reader.Dword();  // help
  dialog.exStyle = reader.Dword();
  dialog.style = reader.Dword();
  const WORD count = reader.Word();
  dialog.rect = reader.Rect();
  reader.Nothing();  // menu
  reader.Nothing();  // class
  dialog.caption = reader.Text();
  if (dialog.style & kHasFont) {
    reader.Skip(6);  // size, weight, italics and character set
    reader.Text();
  }
  for (WORD n = 0; n < count; ++n) dialog.controls.push_back(ReadControl(reader));
  return dialog;
}

}  // namespace pal
