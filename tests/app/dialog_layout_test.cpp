// How the dialogs lie before the person, in both languages.
#include <algorithm>
#include <map>

#include "tests/dialog_test.h"

namespace veltra {
namespace {

using pal::ControlView;
using pal::DialogView;

constexpr WPARAM kDialogs[] = {IDC_OPTIONS, IDC_OPEN_POWER_METER};
constexpr WPARAM kEnglishCommand = IDC_FIRST_LANGUAGE;

class DialogLayout : public DialogTest {
 protected:
  // Looks at each dialog in English and Dutch.
  template <class Check>
  void InBothLanguages(Check check) {
    Start();
    tablet.Advance(5s);
    for (const WPARAM language : {kEnglishCommand, kEnglishCommand + 1}) {
      OpenAgain(language);
      for (const WPARAM command : kDialogs) {
        OpenAgain(command);
        const auto dialog = person::FrontDialog();
        ASSERT_TRUE(dialog);
        check(*dialog);
        Leave(WayOut::kEscape);
      }
    }
  }
};

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

TEST_F(DialogLayout, EverythingHasRoom) {
  InBothLanguages([](const DialogView& dialog) {
    const RECT client = {0, 0, dialog.rect.right - dialog.rect.left, dialog.rect.bottom - dialog.rect.top};
    EXPECT_LE(client.right, 780);  // a frame and a caption fit beside it on a small screen
    EXPECT_LE(client.bottom, 540);
    for (const ControlView& one : dialog.controls) {
      EXPECT_TRUE(Inside(Area(one), client)) << one.id;
      for (const ControlView& other : dialog.controls) {
        if (one.id >= other.id || !one.isVisible || !other.isVisible) continue;
        const RECT a = Area(one), b = Area(other);
        if (IsGroup(one) || IsGroup(other))
          EXPECT_TRUE(!Overlap(a, b) || Inside(a, b) || Inside(b, a)) << one.id << " and " << other.id;
        else
          EXPECT_FALSE(Overlap(a, b)) << one.id << " and " << other.id;
      }
    }
  });
}

TEST_F(DialogLayout, AccessKeysDoNotClash) {
  InBothLanguages([](const DialogView& dialog) {
    std::map<char16_t, int> keys;
    for (const ControlView& control : dialog.controls)
      if (const size_t at = control.text.find(u'&'); at != std::u16string::npos)
        ++keys[static_cast<char16_t>(control.text[at + 1] | 0x20)];
    for (const auto& [key, count] : keys) EXPECT_EQ(count, 1) << static_cast<char>(key);
  });
}

// From the top to the bottom in each column, and in a row to the right.
TEST_F(DialogLayout, TabGoesWithTheEye) {
  InBothLanguages([](const DialogView& dialog) {
    const ControlView* before = nullptr;
    for (const ControlView& control : dialog.controls) {
      if (!control.isTabStop || !control.isVisible) continue;
      if (before) {
        const RECT a = Area(*before), b = Area(control);
        EXPECT_TRUE(b.left >= a.right || b.top >= a.bottom) << before->id << " to " << control.id;
      }
      before = &control;
    }
  });
}

// What has no text of its own is read out with the label just before it; the parameter of a side button's
// action shares that of the action's list.
TEST_F(DialogLayout, EveryFieldHasALabelBefore) {
  InBothLanguages([](const DialogView& dialog) {
    const ControlView* label = nullptr;
    int fields = 0;  // behind the label
    for (const ControlView& control : dialog.controls) {
      if (!control.isVisible) continue;
      if (control.windowClass == u"Static" && !control.text.empty()) {
        label = &control;
        fields = 0;
      }
      if (!control.isTabStop || control.windowClass == u"Button") continue;
      const bool sharesLabel = control.id >= IDO_ROW_VALUE_0 && control.id <= IDO_ROW_VALUE_3;
      ASSERT_TRUE(label) << control.id;
      EXPECT_EQ(fields++, sharesLabel ? 1 : 0) << control.id;
    }
  });
}

TEST_F(DialogLayout, TextsFollowTheLanguage) {
  std::vector<std::u16string> titles;
  std::vector<std::u16string> texts;
  InBothLanguages([&](const DialogView& dialog) {
    titles.push_back(dialog.title);
    for (const ControlView& control : dialog.controls)
      if (control.id == IDO_DISABLE_USB_BACK || control.id == IDP_LOW) texts.push_back(control.text);
  });
  EXPECT_EQ(titles, (std::vector<std::u16string>{u"Options", u"Power meter", u"Opties", u"Batterijstatus"}));
  EXPECT_EQ(texts, (std::vector<std::u16string>{u"Disable USB ports (back) during Standby",
                                                u"Activate &low battery alarm when power level reaches:",
                                                u"USB poorten achteraan uitschakelen in slaapstand",
                                                u"&Laag batterijniveau melden bij:"}));
}

}  // namespace
}  // namespace veltra
