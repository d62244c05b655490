// Painting a part of a dialog over its controls.
#include <gtest/gtest.h>
#include <windows.h>

#include "tests/pal/test_dialog.h"

namespace {

using contract::TestDialog;

RECT AreaOf(HWND dialog, int id) {
  RECT screen;
  GetWindowRect(GetDlgItem(dialog, id), &screen);
  POINT corners[] = {{screen.left, screen.top}, {screen.right, screen.bottom}};
  for (POINT& corner : corners) ScreenToClient(dialog, &corner);
  return {corners[0].x, corners[0].y, corners[1].x, corners[1].y};
}

TEST(Drawing, InvalidAreasArePaintedOnce) {
  int paints = 0;
  TestDialog dialog([&](HWND window, UINT message, WPARAM, LPARAM) -> INT_PTR {
    if (message != WM_PAINT) return FALSE;
    ++paints;
    PAINTSTRUCT paint;
    const HDC context = BeginPaint(window, &paint);
    EXPECT_NE(context, nullptr);
    UpdateWindow(GetDlgItem(window, TALKING_LABEL));  // the label first, so that it does not paint over
    ValidateRect(GetDlgItem(window, TALKING_LABEL), nullptr);
    const HBRUSH brush = CreateSolidBrush(0x00FF00);
    const HGDIOBJ before = SelectObject(context, brush);
    EXPECT_NE(before, nullptr);
    EXPECT_TRUE(Ellipse(context, 5, 5, 20, 20));
    EXPECT_EQ(SelectObject(context, before), brush);
    EXPECT_TRUE(DeleteObject(brush));
    EndPaint(window, &paint);
    return TRUE;
  });
  const HWND window = dialog.Create();
  InvalidateRect(window, nullptr, TRUE);
  UpdateWindow(window);
  EXPECT_EQ(paints, 0);  // nothing to see yet
  ShowWindow(window, SW_SHOW);
  UpdateWindow(window);
  EXPECT_EQ(paints, 1);

  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
  paints = 0;
  const RECT area = AreaOf(window, TALKING_LABEL);
  EXPECT_LT(area.left, area.right);
  InvalidateRect(window, &area, TRUE);
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
  EXPECT_EQ(paints, 1);
  DestroyWindow(window);
}

}  // namespace
