#include "plugins/macro/macro_keys.h"

#include <algorithm>

namespace macro {
namespace {

constexpr bool kExtended = true;
constexpr bool kModifier = true;

constexpr KeyName kKeyNames[] = {
    {"Enter", "Enter", 0x0D},
    {"Tab", "Tab", 0x09},
    {"Space", "Spatie", 0x20},
    {"Backspace", "Backspace", 0x08},
    {"Escape", "Escape", 0x1B},
    {"Left", "Links", 0x25, kExtended},
    {"Right", "Rechts", 0x27, kExtended},
    {"Up", "Omhoog", 0x26, kExtended},
    {"Down", "Omlaag", 0x28, kExtended},
    {"Home", "Home", 0x24, kExtended},
    {"End", "End", 0x23, kExtended},
    {"PageUp", "PaginaOmhoog", 0x21, kExtended},
    {"PageDown", "PaginaOmlaag", 0x22, kExtended},
    {"Insert", "Invoegen", 0x2D, kExtended},
    {"Delete", "Verwijderen", 0x2E, kExtended},
    {"Ctrl", "Ctrl", 0x11, !kExtended, kModifier},
    {"Shift", "Shift", 0x10, !kExtended, kModifier},
    {"Alt", "Alt", 0x12, !kExtended, kModifier},
    {"AltGr", "AltGr", 0xA5, kExtended, kModifier},
    {"Win", "Win", 0x5B, kExtended, kModifier},
    {"Menu", "Menu", 0x5D, kExtended},
    {"CapsLock", "CapsLock", 0x14},
    {"F1", "F1", 0x70},
    {"F2", "F2", 0x71},
    {"F3", "F3", 0x72},
    {"F4", "F4", 0x73},
    {"F5", "F5", 0x74},
    {"F6", "F6", 0x75},
    {"F7", "F7", 0x76},
    {"F8", "F8", 0x77},
    {"F9", "F9", 0x78},
    {"F10", "F10", 0x79},
    {"F11", "F11", 0x7A},
    {"F12", "F12", 0x7B},
    {"PrintScreen", "PrintScreen", 0x2C, kExtended},
    {"Plus", "Plus", 0xBB},
    {"Minus", "Min", 0xBD},
    {"Comma", "Komma", 0xBC},
    {"Period", "Punt", 0xBE},
    {"VolumeUp", "VolumeHoger", 0xAF, kExtended},
    {"VolumeDown", "VolumeLager", 0xAE, kExtended},
    {"VolumeMute", "Dempen", 0xAD, kExtended},
    {"PlayPause", "Afspelen", 0xB3, kExtended},
    {"NextTrack", "VolgendNummer", 0xB0, kExtended},
    {"PreviousTrack", "VorigNummer", 0xB1, kExtended},
    {"BrowserBack", "BrowserTerug", 0xA6, kExtended},
    {"BrowserForward", "BrowserVooruit", 0xA7, kExtended},
    {"BrowserRefresh", "BrowserVernieuwen", 0xA8, kExtended},
    {"BrowserHome", "BrowserStartpagina", 0xAC, kExtended},
};

// Names that people know, too.
struct OtherName {
  std::string_view name;
  std::string_view english;
};
constexpr OtherName kOtherNames[] = {
    {"Esc", "Escape"}, {"Del", "Delete"}, {"Ins", "Insert"}, {"PgUp", "PageUp"}, {"PgDn", "PageDown"},
};

bool IsCalled(std::string_view name, veltra::WideView text) {
  return veltra::UpperAscii(text) == veltra::UpperAscii(veltra::Widen(name));
}

}  // namespace

std::span<const KeyName> KeyNames() {
  return kKeyNames;
}

const KeyName* FindKey(veltra::WideView name) {
  const auto* other =
      std::ranges::find_if(kOtherNames, [name](const OtherName& row) { return IsCalled(row.name, name); });
  const auto* key = std::ranges::find_if(kKeyNames, [&](const KeyName& row) {
    return IsCalled(row.english, name) || IsCalled(row.dutch, name) ||
           (other != std::end(kOtherNames) && row.english == other->english);
  });
  return key == std::end(kKeyNames) ? nullptr : key;
}

}  // namespace macro
