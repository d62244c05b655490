// Drawing.
#pragma once

#include "windef.h"

#define WHITE_BRUSH 0
#define BLACK_BRUSH 4
#define RGB(red, green, blue)                                                                          \
  (static_cast<COLORREF>(static_cast<BYTE>(red) | (static_cast<WORD>(static_cast<BYTE>(green)) << 8) | \
                         (static_cast<DWORD>(static_cast<BYTE>(blue)) << 16)))

HBRUSH WINAPI CreateSolidBrush(COLORREF colour);
HGDIOBJ WINAPI GetStockObject(int object);
HGDIOBJ WINAPI SelectObject(HDC context, HGDIOBJ object);
BOOL WINAPI DeleteObject(HGDIOBJ object);
BOOL WINAPI Ellipse(HDC context, int left, int top, int right, int bottom);
