// How the dialogs lie before the person, in both languages.
#include <algorithm>

#include "resources/version.h"
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

// From the top to the bottom in each column, and in a row to the right.
void ExpectOrder(const DialogView& dialog) {
  const ControlView* before = nullptr;
  for (const ControlView& control : dialog.controls) {
    if (!control.isVisible || !control.isTabStop) continue;
    const RECT a = before ? Area(*before) : RECT{}, b = Area(control);
    EXPECT_TRUE(b.left >= a.right || b.top >= a.bottom) << control.id;
    before = &control;
  }
}

// What a screen reader says of all that the keyboard reaches, and of what has no text.
std::u16string SpokenNames(const DialogView& dialog) {
  std::u16string names;
  for (const ControlView& control : dialog.controls)
    if (control.isVisible && (control.isTabStop || control.text.empty())) names += control.spokenName + u"|";
  std::ranges::replace(names, u'\n', u' ');
  return names;
}

// Everything that is written, in the order of the template.
std::u16string TextsOf(const DialogView& dialog) {
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
    std::u16string_view names;
    std::u16string_view action;  // that is chosen for one button
  } cases[] = {
      {IDC_FIRST_LANGUAGE, IDC_OPTIONS, u"Options",
       u"Flight mode|WLAN|Bluetooth|Mobile phone|Speakers:|On|Off|Speaker volume:|Headphones:|On|Off|"
       u"Microphone:|On|Off|Microphone volume:|Switches|Switch 1 starts device:|Switch 1:|Switch 2:|"
       u"Disable USB ports (back) during Standby|Disable USB port (bottom) during Standby|Side buttons|"
       u"Top: (short)|ID:|...|Top: (long)|ID:|...|Middle:|Bottom: (short)|ID:|...|Bottom: (long)|ID:|...|"
       u"Version PIC:|112|Version device:|" VELTRA_VERSION u"|&OK|",
       u"Flight mode|WLAN|Bluetooth|Mobile phone|Speakers On|Speakers Off|Speaker volume:|Headphones On|"
       u"Headphones Off|Microphone On|Microphone Off|Microphone volume:|Switch 1 starts device:|Switch 1:|"
       u"Switch 2:|Switches|Disable USB ports (back) during Standby|Disable USB port (bottom) during Standby|"
       u"Top (short)|Top (short) Perform Windows function|Top (long)|Top (long) Start program|"
       u"Top (long) Start program ...|Middle:|Bottom (short)|Bottom (short) Perform Windows function|"
       u"Bottom (long)|OK|",
       u"Start program"},
      {IDC_FIRST_LANGUAGE, IDC_OPEN_POWER_METER, u"Power meter",
       u"Power status|Current power source:|Batteries|Total battery power remaining:|50%|Low battery alarm|"
       u"3%|Activate &low battery alarm when power level reaches:|10%|60%|Critical battery alarm|3%|"
       u"Activate c&ritical battery alarm when power level reaches:|5%|30%|&OK|&Cancel|",
       u"Power status|Activate low battery alarm when power level reaches:|Low battery alarm|"
       u"Activate critical battery alarm when power level reaches:|Critical battery alarm|OK|Cancel|",
       u""},
      {IDC_FIRST_LANGUAGE + 1, IDC_OPTIONS, u"Opties",
       u"Vliegtuigstand|WLAN|Bluetooth|GSM|Luidsprekers:|Aan|Uit|Luidsprekervolume:|Hoofdtelefoon:|Aan|Uit|"
       u"Microfoon:|Aan|Uit|Microfoonvolume:|Schakelaars|Toestel starten:|Schakelaar 1:|Schakelaar 2:|"
       u"USB poorten achteraan uitschakelen in slaapstand|USB poort onderaan uitschakelen in slaapstand|"
       u"Knoppen zijkant|Boven: (kort)|ID:|...|Boven: (lang)|ID:|...|Midden:|Onder: (kort)|ID:|...|"
       u"Onder: (lang)|ID:|...|Versie PIC:|112|Versie toestel:|" VELTRA_VERSION u"|&OK|",
       u"Vliegtuigstand|WLAN|Bluetooth|GSM|Luidsprekers Aan|Luidsprekers Uit|Luidsprekervolume:|"
       u"Hoofdtelefoon Aan|Hoofdtelefoon Uit|Microfoon Aan|Microfoon Uit|Microfoonvolume:|Toestel starten:|"
       u"Schakelaar 1:|Schakelaar 2:|Schakelaars|USB poorten achteraan uitschakelen in slaapstand|"
       u"USB poort onderaan uitschakelen in slaapstand|Boven (kort)|Boven (kort) Windows functie|Boven "
       u"(lang)|"
       u"Boven (lang) Start programma|Boven (lang) Start programma ...|Midden:|Onder (kort)|"
       u"Onder (kort) Windows functie|Onder (lang)|OK|",
       u"Start programma"},
      {IDC_FIRST_LANGUAGE + 1, IDC_OPEN_POWER_METER, u"Batterijstatus",
       u"Stroomvoorziening|Huidige stroombron:|Batterij|Resterende batterijlading:|50%|"
       u"Alarm bij laag batterijniveau|3%|&Laag batterijniveau melden bij:|10%|60%|"
       u"Alarm bij kritiek batterijniveau|3%|K&ritiek batterijniveau melden bij:|5%|30%|&OK|&Annuleren|",
       u"Stroomvoorziening|Laag batterijniveau melden bij:|Alarm bij laag batterijniveau|"
       u"Kritiek batterijniveau melden bij:|Alarm bij kritiek batterijniveau|OK|Annuleren|",
       u""},
  };
  for (const auto& c : cases) {
    OpenAgain(c.language);
    OpenAgain(c.command);
    if (!c.action.empty()) person::Choose(IDO_ROW_TYPE_2, c.action);
    Settle();
    const auto dialog = person::FrontDialog();
    ASSERT_TRUE(dialog);
    EXPECT_EQ(dialog->title, c.title);
    EXPECT_EQ(TextsOf(*dialog), c.texts);
    ExpectRoomForEverything(*dialog);
    ExpectAccessKeysToDiffer(*dialog);
    ExpectOrder(*dialog);
    EXPECT_EQ(SpokenNames(*dialog), c.names);
    Leave(WayOut::kEscape);
  }
}

}  // namespace
}  // namespace veltra
