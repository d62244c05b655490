#include "app/dialogs/control_names.h"

#include <windows.h>

#include <objbase.h>
#include <oleacc.h>

#include <algorithm>

#include "app/app_state.h"
#include "app/dialogs/dialog_items.h"
#include "resources/resource_ids.h"

namespace veltra {
namespace {

constexpr GUID kServicesClass = {
    0xB5F8350B, 0x0548, 0x48B1, {0xA6, 0xEE, 0x88, 0xBD, 0x00, 0xB4, 0xA5, 0xE7}};
constexpr GUID kServices = {0x6E26E776, 0x04F0, 0x495D, {0x80, 0xE4, 0x33, 0x30, 0x35, 0x2E, 0x31, 0x69}};
constexpr GUID kNameProperty = {0x608D3DF8, 0x8128, 0x4AA7, {0xA4, 0x28, 0xF5, 0x5E, 0x49, 0x26, 0x72, 0x91}};

struct NamedControl {
  int id;
  int parts[3];  // controls whose texts make the name; 0: none
};
constexpr NamedControl kNamedControls[] = {
    {IDO_SPEAKERS_ON, {IDO_SPEAKERS_LABEL, IDO_SPEAKERS_ON}},
    {IDO_SPEAKERS_OFF, {IDO_SPEAKERS_LABEL, IDO_SPEAKERS_OFF}},
    {IDO_HEADPHONES_ON, {IDO_HEADPHONES_LABEL, IDO_HEADPHONES_ON}},
    {IDO_HEADPHONES_OFF, {IDO_HEADPHONES_LABEL, IDO_HEADPHONES_OFF}},
    {IDO_MICROPHONE_ON, {IDO_MICROPHONE_LABEL, IDO_MICROPHONE_ON}},
    {IDO_MICROPHONE_OFF, {IDO_MICROPHONE_LABEL, IDO_MICROPHONE_OFF}},
    {IDO_INDICATOR, {IDO_SWITCHES_GROUP}},
    {IDO_ROW_TYPE_0, {IDO_ROW_LABEL_0}},
    {IDO_ROW_TYPE_1, {IDO_ROW_LABEL_1}},
    {IDO_ROW_TYPE_2, {IDO_ROW_LABEL_2}},
    {IDO_ROW_TYPE_3, {IDO_ROW_LABEL_3}},
    {IDO_ROW_VALUE_0, {IDO_ROW_LABEL_0, IDO_ROW_TYPE_0}},
    {IDO_ROW_VALUE_1, {IDO_ROW_LABEL_1, IDO_ROW_TYPE_1}},
    {IDO_ROW_VALUE_2, {IDO_ROW_LABEL_2, IDO_ROW_TYPE_2}},
    {IDO_ROW_VALUE_3, {IDO_ROW_LABEL_3, IDO_ROW_TYPE_3}},
    {IDO_ROW_CELL_0, {IDO_ROW_LABEL_0, IDO_ROW_TYPE_0}},
    {IDO_ROW_CELL_1, {IDO_ROW_LABEL_1, IDO_ROW_TYPE_1}},
    {IDO_ROW_CELL_2, {IDO_ROW_LABEL_2, IDO_ROW_TYPE_2}},
    {IDO_ROW_CELL_3, {IDO_ROW_LABEL_3, IDO_ROW_TYPE_3}},
    {IDO_ROW_TEXT_0, {IDO_ROW_LABEL_0, IDO_ROW_TYPE_0}},
    {IDO_ROW_TEXT_1, {IDO_ROW_LABEL_1, IDO_ROW_TYPE_1}},
    {IDO_ROW_TEXT_2, {IDO_ROW_LABEL_2, IDO_ROW_TYPE_2}},
    {IDO_ROW_TEXT_3, {IDO_ROW_LABEL_3, IDO_ROW_TYPE_3}},
    {IDO_ROW_BROWSE_0, {IDO_ROW_LABEL_0, IDO_ROW_TYPE_0, IDO_ROW_BROWSE_0}},
    {IDO_ROW_BROWSE_1, {IDO_ROW_LABEL_1, IDO_ROW_TYPE_1, IDO_ROW_BROWSE_1}},
    {IDO_ROW_BROWSE_2, {IDO_ROW_LABEL_2, IDO_ROW_TYPE_2, IDO_ROW_BROWSE_2}},
    {IDO_ROW_BROWSE_3, {IDO_ROW_LABEL_3, IDO_ROW_TYPE_3, IDO_ROW_BROWSE_3}},
    {IDP_ICON, {IDP_STATUS_GROUP}},
    {IDP_LOW_LEVEL, {IDP_LOW_GROUP}},
    {IDP_CRITICAL_LEVEL, {IDP_CRITICAL_GROUP}},
};

// "Speakers:" and "On" make "Speakers On".
WideText NameOf(HWND dialog, const NamedControl& control) {
  constexpr int kLongestPart = 254;
  WideText name;
  for (const int part : control.parts) {
    if (part == 0) break;
    WideText text = GetItemText(dialog, part, kLongestPart);
    std::erase_if(text, [](WideChar letter) { return letter == '&' || letter == ':'; });
    std::ranges::replace(text, WideChar{'\n'}, WideChar{' '});
    if (!name.empty()) name += WideChar{' '};
    name += text;
  }
  return name;
}

// Does `act` with each of the dialog's named controls.
template <class Act>
void ForEachNamed(HWND dialog, Act act) {
  const std::shared_ptr<ComLibrary> com = System().com;
  void* created = nullptr;
  if (FAILED(CoCreateInstance(kServicesClass, nullptr, CLSCTX_INPROC_SERVER, kServices, &created))) return;
  auto* const services = static_cast<IAccPropServices*>(created);
  for (const NamedControl& control : kNamedControls)
    if (const HWND window = GetDlgItem(dialog, control.id)) act(*services, window, control);
  services->Release();
}

}  // namespace

void NameControls(HWND dialog) {
  ForEachNamed(dialog, [&](IAccPropServices& services, HWND window, const NamedControl& control) {
    services.SetHwndPropStr(window, OBJID_CLIENT, CHILDID_SELF, kNameProperty,
                            NameOf(dialog, control).c_str());
  });
}

void ForgetControlNames(HWND dialog) {
  ForEachNamed(dialog, [](IAccPropServices& services, HWND window, const NamedControl&) {
    services.ClearHwndProps(window, OBJID_CLIENT, CHILDID_SELF, &kNameProperty, 1);
  });
}

}  // namespace veltra
