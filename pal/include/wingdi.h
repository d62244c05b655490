// Drawing.
#pragma once

#include "windef.h"

#define WHITE_BRUSH 0
#define BLACK_BRUSH 4

HBRUSH WINAPI CreateSolidBrush(COLORREF colour);
HGDIOBJ WINAPI GetStockObject(int object);
HGDIOBJ WINAPI SelectObject(HDC context, HGDIOBJ object);
BOOL WINAPI DeleteObject(HGDIOBJ object);
BOOL WINAPI Ellipse(HDC context, int left, int top, int right, int bottom);
