// How the dialogs lie before the person, in both languages.
#include <algorithm>

#include "tests/dialog_test.h"

namespace veltra {
namespace {

using pal::ControlView;
using pal::DialogView;

using DialogLayout = DialogTest;

bool IsGroup(const ControlView& control) {
  return control.id == IDO_SWITCHES_GROUP || control.id == IDO_SIDE_BUTTONS_GROUP ||
         control.id == IDP_STATUS_GROUP || control.id == IDP_LOW_GROUP || control.id == IDP_CRITICAL_GROUP;
}

// The area that a control takes: of a drop-down list the closed box.
RECT Area(const ControlView& control) {
  constexpr LONG kClosedList = 23;
  RECT rect = control.rect;
  if (control.windowClass == u"ComboBox") rect.bottom = rect.top + kClosedList;
  return rect;
}

bool Overlap(const RECT& a, const RECT& b) {
  return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

bool Inside(const RECT& inner, const RECT& outer) {
  return inner.left >= outer.left && inner.right <= outer.right && inner.top >= outer.top &&
         inner.bottom <= outer.bottom;
}

void ExpectRoomForEverything(const DialogView& dialog) {
  const RECT client = {0, 0, dialog.rect.right - dialog.rect.left, dialog.rect.bottom - dialog.rect.top};
  EXPECT_LE(client.right, 780);  // a frame and a caption fit beside it on a small screen
  EXPECT_LE(client.bottom, 540);
  for (const ControlView& one : dialog.controls) {
    const RECT a = Area(one);
    EXPECT_TRUE(Inside(a, client)) << one.id;
    for (const ControlView& other : dialog.controls) {
      if (one.id >= other.id || !one.isVisible || !other.isVisible) continue;
      const RECT b = Area(other);
      const bool mayHold = IsGroup(one) || IsGroup(other);
      EXPECT_TRUE(!Overlap(a, b) || (mayHold && (Inside(a, b) || Inside(b, a))))
          << one.id << " and " << other.id;
    }
  }
}

void ExpectAccessKeysToDiffer(const DialogView& dialog) {
  std::u16string keys;
  for (const ControlView& control : dialog.controls)
    if (const size_t at = control.text.find(u'&'); at != std::u16string::npos)
      keys += static_cast<char16_t>(control.text[at + 1] | 0x20);
  std::ranges::sort(keys);
  EXPECT_EQ(std::ranges::adjacent_find(keys), keys.end());
}

// From the top to the bottom in each column, and in a row to the right. What has no text of its own is read
// out with the label just before it; the parameter of a side button's action shares that of the action's
// list.
void ExpectOrderAndLabels(const DialogView& dialog) {
  const ControlView* before = nullptr;
  int fields = -1;  // behind the label
  for (const ControlView& control : dialog.controls) {
    if (!control.isVisible) continue;
    if (control.windowClass == u"Static" && !control.text.empty()) fields = 0;
    if (!control.isTabStop) continue;
    const RECT a = before ? Area(*before) : RECT{}, b = Area(control);
    EXPECT_TRUE(b.left >= a.right || b.top >= a.bottom) << control.id;
    before = &control;
    if (control.windowClass == u"Button") continue;
    const bool sharesLabel = control.id >= IDO_ROW_VALUE_0 && control.id <= IDO_ROW_VALUE_3;
    EXPECT_EQ(fields++, sharesLabel ? 1 : 0) << control.id;
  }
}

// Everything that is written, in the order of the template.
std::u16string Texts(const DialogView& dialog) {
  std::u16string texts;
  for (const ControlView& control : dialog.controls)
    if (control.windowClass != u"ComboBox" && !control.text.empty()) texts += control.text + u"|";
  std::ranges::replace(texts, u'\n', u' ');
  return texts;
}

TEST_F(DialogLayout, IsTheSameInBothLanguages) {
  Start();
  tablet.Advance(5s);
  const struct {
    WPARAM language, command;
    std::u16string_view title;
    std::u16string_view texts;
  } cases[] = {
      {IDC_FIRST_LANGUAGE, IDC_OPTIONS, u"Options",
       u"Flight mode|WLAN|Bluetooth|Mobile phone|Speakers:|On|Off|Speaker volume:|Headphones:|On|Off|"
       u"Microphone:|On|Off|Microphone volume:|Switches|Switch 1 starts device:|Switch 1:|Switch 2:|"
       u"Disable USB ports (back) during Standby|Disable USB port (bottom) during Standby|Side buttons|"
       u"Top: (short)|ID:|...|Top: (long)|ID:|...|Middle:|Bottom: (short)|ID:|...|Bottom: (long)|ID:|...|"
       u"Version PIC:|112|Version device:|1.0.0.0|&OK|"},
      {IDC_FIRST_LANGUAGE, IDC_OPEN_POWER_METER, u"Power meter",
       u"Power status|Current power source:|Batteries|Total battery power remaining:|50%|Low battery alarm|"
       u"3%|Activate &low battery alarm when power level reaches:|10%|60%|Critical battery alarm|3%|"
       u"Activate c&ritical battery alarm when power level reaches:|5%|30%|&OK|&Cancel|"},
      {IDC_FIRST_LANGUAGE + 1, IDC_OPTIONS, u"Opties",
       u"Vliegtuigstand|WLAN|Bluetooth|GSM|Luidsprekers:|Aan|Uit|Luidsprekervolume:|Hoofdtelefoon:|Aan|Uit|"
       u"Microfoon:|Aan|Uit|Microfoonvolume:|Schakelaars|Toestel starten:|Schakelaar 1:|Schakelaar 2:|"
       u"USB poorten achteraan uitschakelen in slaapstand|USB poort onderaan uitschakelen in slaapstand|"
       u"Knoppen zijkant|Boven: (kort)|ID:|...|Boven: (lang)|ID:|...|Midden:|Onder: (kort)|ID:|...|"
       u"Onder: (lang)|ID:|...|Versie PIC:|112|Versie toestel:|1.0.0.0|&OK|"},
      {IDC_FIRST_LANGUAGE + 1, IDC_OPEN_POWER_METER, u"Batterijstatus",
       u"Stroomvoorziening|Huidige stroombron:|Batterij|Resterende batterijlading:|50%|"
       u"Alarm bij laag batterijniveau|3%|&Laag batterijniveau melden bij:|10%|60%|"
       u"Alarm bij kritiek batterijniveau|3%|K&ritiek batterijniveau melden bij:|5%|30%|&OK|&Annuleren|"},
  };
  for (const auto& c : cases) {
    OpenAgain(c.language);
    OpenAgain(c.command);
    const auto dialog = person::FrontDialog();
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->title, c.title);
    EXPECT_EQ(Texts(*dialog), c.texts);
    ExpectRoomForEverything(*dialog);
    ExpectAccessKeysToDiffer(*dialog);
    ExpectOrderAndLabels(*dialog);
    Leave(WayOut::kEscape);
  }
}

}  // namespace
}  // namespace veltra
