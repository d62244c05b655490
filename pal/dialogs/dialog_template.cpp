#include "pal/dialogs/dialog_template.h"

#include "pal/resources/byte_reader.h"

namespace pal {
namespace {

constexpr DWORD kExtendedForm = 0xFFFF0001;
constexpr DWORD kHasFont = 0x40;

// Pixels for 4 horizontal and 8 vertical dialog units: those of the usual font.
constexpr int kBaseWidth = 6;
constexpr int kBaseHeight = 13;

std::u16string ClassOfNumber(WORD number) {
  constexpr std::pair<WORD, const char16_t*> kClasses[] = {
      {0x80, u"Button"}, {0x81, u"Edit"}, {0x82, u"Static"}, {0x85, u"ComboBox"}};
  for (const auto& [classNumber, name] : kClasses)
    if (number == classNumber) return name;
  Die("a dialog control of an unknown class");
}

int Pixels(ByteReader& reader, int base, int units) {
  return (static_cast<SHORT>(reader.Word()) * base + units / 2) / units;
}

RECT ReadRect(ByteReader& reader) {
  const int x = Pixels(reader, kBaseWidth, 4);
  const int y = Pixels(reader, kBaseHeight, 8);
  const int width = Pixels(reader, kBaseWidth, 4);
  const int height = Pixels(reader, kBaseHeight, 8);
  return {x, y, x + width, y + height};
}

// The menu or the class of the dialog itself: none.
void ReadNothing(ByteReader& reader) {
  if (reader.Word() != 0) Die("a dialog template with a menu or a class");
}

std::u16string ReadClass(ByteReader& reader) {
  const std::optional<WORD> number = reader.NumberForText();
  return number ? ClassOfNumber(*number) : reader.Text();
}

// A picture's number is no text.
std::u16string ReadCaption(ByteReader& reader) {
  return reader.NumberForText() ? std::u16string() : reader.Text();
}

TemplateControl ReadControl(ByteReader& reader) {
  TemplateControl control;
  reader.AlignTo4();
  reader.Dword();  // help
  control.exStyle = reader.Dword();
  control.style = reader.Dword();
  control.rect = ReadRect(reader);
  control.id = reader.Dword();
  control.windowClass = ReadClass(reader);
  control.text = ReadCaption(reader);
  reader.Bytes(reader.Word());  // data for WM_CREATE
  return control;
}

}  // namespace

DialogTemplate ReadDialogTemplate(std::span<const uint8_t> data) {
  ByteReader reader(data);
  DialogTemplate dialog;
  if (reader.Dword() != kExtendedForm) Die("a dialog template of the old form");
  reader.Dword();  // help
  dialog.exStyle = reader.Dword();
  dialog.style = reader.Dword();
  const WORD count = reader.Word();
  dialog.rect = ReadRect(reader);
  ReadNothing(reader);  // menu
  ReadNothing(reader);  // class
  dialog.caption = reader.Text();
  if (dialog.style & kHasFont) {
    reader.Bytes(6);  // size, weight, italics and character set
    reader.Text();
  }
  for (WORD n = 0; n < count; ++n) dialog.controls.push_back(ReadControl(reader));
  return dialog;
}

}  // namespace pal
