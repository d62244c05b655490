// Painting: which windows must be painted, and the little that is drawn.
#include <utility>

#include "pal/windows/window_calls.h"

using namespace pal;

namespace {

constexpr ULONG_PTR kStockObjects = 0x40000;
constexpr COLORREF kStockColours[] = {0xFFFFFF, 0xC0C0C0, 0x808080, 0x404040, 0x000000};  // white to black

HGDIOBJ StockObject(int object) {
  return reinterpret_cast<HGDIOBJ>(kStockObjects + static_cast<ULONG_PTR>(object));
}

bool Overlap(const RECT& a, const RECT& b) {
  return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

// A device context is known by the window it draws in.
HDC ContextOf(HWND window) {
  return reinterpret_cast<HDC>(window);
}

COLORREF ColourOf(const Drawing& drawing, HGDIOBJ brush) {
  const auto own = drawing.brushes.find(brush);
  if (own != drawing.brushes.end()) return own->second;
  const ULONG_PTR stock = reinterpret_cast<ULONG_PTR>(brush) - kStockObjects;
  if (stock >= std::size(kStockColours)) Die("drawing with what is no brush");
  return kStockColours[stock];
}

}  // namespace

// A part of a window, with the children that lie there.
BOOL WINAPI InvalidateRect(HWND window, const RECT* rect, BOOL /*erase*/) {
  const Call call("InvalidateRect");
  if (call.Fails()) return FALSE;
  const Window* found = call->desktop.Find(window);
  if (!found) return Refuse(ERROR_INVALID_WINDOW_HANDLE, FALSE);
  if (!call->desktop.IsShown(window)) return TRUE;
  found->thread->queue.Invalidate(window);
  for (const HWND handle : call->desktop.Children(window)) {
    const Window* child = call->desktop.Find(handle);
    if (call->desktop.IsShown(handle) && (!rect || Overlap(*rect, child->rect)))
      found->thread->queue.Invalidate(handle);
  }
  call->scheduler.Notify();
  return TRUE;
}

BOOL WINAPI ValidateRect(HWND window, const RECT* rect) {
  const Call call;
  if (rect) Die("ValidateRect of a part");
  const Window* found = call->desktop.Find(window);
  if (!found) return Refuse(ERROR_INVALID_WINDOW_HANDLE, FALSE);
  found->thread->queue.Validate(window);
  return TRUE;
}

BOOL WINAPI UpdateWindow(HWND window) {
  {
    const Call call;
    const Window* found = call->desktop.Find(window);
    if (!found) return Refuse(ERROR_INVALID_WINDOW_HANDLE, FALSE);
    if (!found->thread->queue.MustPaint(window)) return TRUE;
  }
  SendMessageW(window, WM_PAINT, 0, 0);
  return TRUE;
}

HDC WINAPI BeginPaint(HWND window, LPPAINTSTRUCT paint) {
  const Call call("BeginPaint");
  if (call.Fails()) return nullptr;
  const Window* found = call->desktop.Find(window);
  if (!found) return Refuse<HDC>(ERROR_INVALID_WINDOW_HANDLE, nullptr);
  found->thread->queue.Validate(window);
  *paint = {};
  paint->hdc = ContextOf(window);
  paint->rcPaint = {0, 0, found->rect.right - found->rect.left, found->rect.bottom - found->rect.top};
  call->drawing.selectedBrushes[paint->hdc] = StockObject(WHITE_BRUSH);
  return paint->hdc;
}

BOOL WINAPI EndPaint(HWND /*window*/, const PAINTSTRUCT* paint) {
  const Call call;
  call->drawing.selectedBrushes.erase(paint->hdc);
  return TRUE;
}

HBRUSH WINAPI CreateSolidBrush(COLORREF colour) {
  const Call call("CreateSolidBrush");
  if (call.Fails()) return nullptr;
  const auto brush = reinterpret_cast<HBRUSH>(++call->drawing.lastHandle);
  call->drawing.brushes[brush] = colour;
  return brush;
}

HGDIOBJ WINAPI GetStockObject(int object) {
  if (object < WHITE_BRUSH || object > BLACK_BRUSH) Die("GetStockObject of an unknown object");
  return StockObject(object);
}

HGDIOBJ WINAPI SelectObject(HDC context, HGDIOBJ object) {
  const Call call("SelectObject");
  if (call.Fails()) return nullptr;
  const auto selected = call->drawing.selectedBrushes.find(context);
  if (selected == call->drawing.selectedBrushes.end()) Die("SelectObject outside of painting");
  ColourOf(call->drawing, object);
  return std::exchange(selected->second, object);
}

BOOL WINAPI DeleteObject(HGDIOBJ object) {
  const Call call("DeleteObject");
  if (call.Fails()) return FALSE;
  for (const auto& [context, brush] : call->drawing.selectedBrushes)
    if (brush == object) Die("DeleteObject of a brush that is still selected");
  return call->drawing.brushes.erase(object) ? TRUE : FALSE;
}

BOOL WINAPI Ellipse(HDC context, int left, int top, int right, int bottom) {
  const Call call("Ellipse");
  if (call.Fails()) return FALSE;
  const auto selected = call->drawing.selectedBrushes.find(context);
  if (selected == call->drawing.selectedBrushes.end()) Die("Ellipse outside of painting");
  call->Emit(EllipseDrawn{left, top, right, bottom, ColourOf(call->drawing, selected->second)});
  return TRUE;
}
