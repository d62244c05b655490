// Icons, and the measures of the screen.
#include <algorithm>

#include "pal/machine/state.h"

using namespace pal;

namespace {

struct Metric {
  int number;
  int value;
};
constexpr Metric kMetrics[] = {{SM_CXSCREEN, 1024}, {SM_CYSCREEN, 768}, {SM_CXICON, 32},
                               {SM_CYICON, 32},     {SM_CXSMICON, 16},  {SM_CYSMICON, 16}};

// Pictures that Windows owns: what is never drawn needs no more than a value of its own.
HICON OfWindows(LPCWSTR name) {
  return reinterpret_cast<HICON>(0x30000 + reinterpret_cast<ULONG_PTR>(name));
}

// The number of an icon of the program; 0, and the last error set, when there is none.
int FindIcon(const Call& call, HINSTANCE instance, LPCWSTR name) {
  if (instance != ProgramInstance() || !IS_INTRESOURCE(name))
    Die("an icon of another module, or with a name");
  if (!call->resources.Find(ResourceNameOf(RT_GROUP_ICON), ResourceNameOf(name), LANG_NEUTRAL))
    return Refuse(ERROR_RESOURCE_NAME_NOT_FOUND, 0);
  return static_cast<int>(reinterpret_cast<ULONG_PTR>(name));
}

}  // namespace

namespace pal {

HICON Pictures::Load(int resource, int size) {
  const auto icon = reinterpret_cast<HICON>(++last_);
  loaded_[icon] = resource;
  sizes_[icon] = size;
  return icon;
}

HICON Pictures::Share(int resource) {
  for (const auto& [icon, shared] : shared_)
    if (shared == resource) return icon;
  const auto icon = reinterpret_cast<HICON>(++last_);
  shared_[icon] = resource;
  return icon;
}

int Pictures::ResourceOf(HICON icon) const {
  for (const auto* pictures : {&loaded_, &shared_})
    if (const auto found = pictures->find(icon); found != pictures->end()) return found->second;
  return 0;
}

int Pictures::SizeOf(HICON icon) const {
  const auto found = sizes_.find(icon);
  return found == sizes_.end() ? 0 : found->second;
}

}  // namespace pal

HICON WINAPI LoadIconW(HINSTANCE instance, LPCWSTR name) {
  const Call call("LoadIconW");
  if (call.Fails()) return nullptr;
  if (!instance) return OfWindows(name);
  const int resource = FindIcon(call, instance, name);
  return resource != 0 ? call->pictures.Share(resource) : nullptr;
}

HANDLE WINAPI LoadImageW(HINSTANCE instance, LPCWSTR name, UINT type, int width, int height, UINT flags) {
  const Call call("LoadImageW");
  if (call.Fails()) return nullptr;
  if (type != IMAGE_ICON || flags != LR_DEFAULTCOLOR || width < 0 || height < 0)
    Die("LoadImageW of anything but an icon of the program");
  const int resource = FindIcon(call, instance, name);
  return resource != 0 ? call->pictures.Load(resource, width) : nullptr;
}

BOOL WINAPI DestroyIcon(HICON icon) {
  const Call call("DestroyIcon");
  if (call.Fails()) return FALSE;
  return call->pictures.Destroy(icon) ? TRUE : Refuse(ERROR_INVALID_CURSOR_HANDLE, FALSE);
}

int WINAPI GetSystemMetrics(int metric) {
  const auto* row = std::ranges::find(kMetrics, metric, &Metric::number);
  if (row == std::end(kMetrics)) Die("GetSystemMetrics of an unknown measure");
  return row->value;
}

UINT WINAPI GetDpiForWindow(HWND window) {
  const Call call("GetDpiForWindow");
  return call.Fails() || !call->desktop.Find(window) ? 0 : call->desktop.dpi;
}

int WINAPI GetSystemMetricsForDpi(int metric, UINT dpi) {
  constexpr int kUnscaled = 96;
  return GetSystemMetrics(metric) * static_cast<int>(dpi) / kUnscaled;
}
