#include "switches/switch_indicator.h"

#include <algorithm>

#include "base/handles.h"
#include "resources/resource_ids.h"
#include "switches/switch_state.h"

namespace veltra {
namespace {

constexpr int kSteps = 2;  // of the service gesture
constexpr int kCircles = 2;
constexpr int kGap = 10;  // between the circles, pixels
constexpr int kMargin = 5;

struct Colours {
  COLORREF released;
  COLORREF held;
};
constexpr COLORREF kWhite = 0xFFFFFF;
constexpr COLORREF kBlack = 0x000000;
constexpr COLORREF kGreen = 0x00FF00;
constexpr COLORREF kBlue = 0xFF0000;
constexpr Colours kUsual = {kWhite, kGreen};
constexpr Colours kInService = {kBlack, kBlue};  // from the circle's step of the gesture on

// Circle 0 shows switch 1, circle 1 switch 2.
COLORREF ColourOf(const SwitchIndicator& indicator, int circle) {
  const Colours& colours = indicator.serviceCount > circle ? kInService : kUsual;
  return (indicator.pressedMask & (1 << circle)) != 0 ? colours.held : colours.released;
}

// In the dialog's client area.
RECT AreaIn(HWND dialog) {
  RECT screen = {};
  GetWindowRect(GetDlgItem(dialog, IDO_INDICATOR), &screen);
  POINT corners[] = {{screen.left, screen.top}, {screen.right, screen.bottom}};
  for (POINT& corner : corners) ScreenToClient(dialog, &corner);
  return {corners[0].x, corners[0].y, corners[1].x, corners[1].y};
}

void DrawCircle(HDC context, const RECT& place, COLORREF colour) {
  const UniqueBrush brush(CreateSolidBrush(colour));
  const HGDIOBJ before = SelectObject(context, brush.Get());
  Ellipse(context, place.left, place.top, place.right, place.bottom);
  SelectObject(context, before);
}

// Side by side, in the middle of the area.
void DrawCircles(HDC context, const RECT& area) {
  const LONG diameter = area.bottom - area.top - 2 * kMargin;
  const LONG width = kCircles * diameter + kGap;
  const LONG left = area.left + (area.right - area.left - width) / 2;
  const LONG top = area.top + kMargin;
  for (int circle = 0; circle < kCircles; ++circle) {
    const LONG x = left + circle * (diameter + kGap);
    DrawCircle(context, {x, top, x + diameter, top + diameter}, ColourOf(Switches().switchIndicator, circle));
  }
}

}  // namespace

void PaintSwitchIndicator(HWND dialog) {
  PAINTSTRUCT paint = {};
  const HDC context = BeginPaint(dialog, &paint);
  const HWND control = GetDlgItem(dialog, IDO_INDICATOR);
  UpdateWindow(control);  // first, so that it does not paint over the circles
  ValidateRect(control, nullptr);
  if (context) DrawCircles(context, AreaIn(dialog));
  EndPaint(dialog, &paint);
}

void RepaintSwitchIndicator() {
  const HWND dialog = Switches().switchIndicator.dialogWindow;
  if (!dialog) return;
  const RECT area = AreaIn(dialog);
  InvalidateRect(dialog, &area, TRUE);
}

void OnIndicatorDoubleClick(HWND dialog) {
  int& count = Switches().switchIndicator.serviceCount;
  count = std::min(count + 1, kSteps);
  MessageBeep(MB_OK);
  InvalidateRect(dialog, nullptr, TRUE);
}

bool MayStartFirmwareUpdate() {
  return GetAsyncKeyState(VK_SHIFT) < 0 || Switches().switchIndicator.serviceCount == kSteps;
}

}  // namespace veltra
