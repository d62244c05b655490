#include "pal/dialogs/spoken_names.h"

#include "pal/devices/owned_object.h"

namespace pal {
namespace {

constexpr MSAAPROPID kNameProperty = {
    0x608D3DF8, 0x8128, 0x4AA7, {0xA4, 0x28, 0xF5, 0x5E, 0x49, 0x26, 0x72, 0x91}};

Window* ControlOf(State& state, HWND window, DWORD objectId, DWORD childId, const MSAAPROPID& property) {
  if (objectId != OBJID_CLIENT || childId != CHILDID_SELF || property != kNameProperty)
    Die("a property of a window that is not its name");
  return state.desktop.Find(window);
}

class PropServices final : public Owned<IAccPropServices> {
 public:
  HRESULT STDMETHODCALLTYPE SetHwndPropStr(HWND window, DWORD objectId, DWORD childId, MSAAPROPID property,
                                           LPCWSTR text) override {
    const Call call("SetHwndPropStr");
    if (call.Fails()) return call.Result();
    Window* control = ControlOf(call.Get(), window, objectId, childId, property);
    if (!control) return E_INVALIDARG;
    control->givenName = text;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE ClearHwndProps(HWND window, DWORD objectId, DWORD childId,
                                           const MSAAPROPID* properties, int count) override {
    const Call call("ClearHwndProps");
    if (call.Fails()) return call.Result();
    if (count != 1) Die("ClearHwndProps of more than the name");
    Window* control = ControlOf(call.Get(), window, objectId, childId, *properties);
    if (!control) return E_INVALIDARG;
    control->givenName.clear();
    return S_OK;
  }
};

std::u16string WithoutAccessKey(std::u16string text) {
  std::erase(text, u'&');
  return text;
}

}  // namespace

IAccPropServices* MakeAccPropServices(State& state) {
  return MakeObject<PropServices>(state);
}

std::u16string SpokenName(State& state, const Window& control) {
  if (!control.givenName.empty()) return control.givenName;
  const auto isLabel = [](const Window& window) { return window.windowClass->name == u"Static"; };
  if (isLabel(control) || control.windowClass->name == u"Button") return WithoutAccessKey(control.title);
  std::u16string name;
  bool isStopBetween = false;
  for (const HWND handle : state.desktop.Children(control.parent)) {
    if (handle == control.handle) break;
    const Window& before = *state.desktop.Find(handle);
    if (isLabel(before)) name = WithoutAccessKey(before.title);  // a hidden one, too
    if (isLabel(before)) isStopBetween = false;
    if ((before.style & WS_VISIBLE) && (before.style & WS_TABSTOP)) isStopBetween = true;
  }
  return isStopBetween ? std::u16string() : name;
}

}  // namespace pal
