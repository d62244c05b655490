#include "pal/resource_constants.h"

#include <windows.h>

#include <algorithm>

namespace pal {
namespace {

struct Constant {
  std::string_view name;
  uint32_t value;
};

template <class Number>
constexpr Constant MakeConstant(std::string_view name, Number value) {
  return {name, static_cast<uint32_t>(value)};
}
#define DECLARED(name) MakeConstant(#name, name)

// What the layer's own headers declare comes from there; the rest is of use to scripts only.
constexpr Constant kConstants[] = {
    DECLARED(LANG_NEUTRAL),
    DECLARED(LANG_GERMAN),
    DECLARED(LANG_ENGLISH),
    DECLARED(LANG_SPANISH),
    DECLARED(LANG_FRENCH),
    DECLARED(LANG_ITALIAN),
    DECLARED(LANG_DUTCH),
    DECLARED(LANG_SWEDISH),
    DECLARED(SUBLANG_NEUTRAL),
    DECLARED(SUBLANG_DEFAULT),
    DECLARED(SUBLANG_SYS_DEFAULT),
    DECLARED(SUBLANG_ENGLISH_US),
    DECLARED(SUBLANG_ENGLISH_UK),
    DECLARED(SUBLANG_DUTCH),
    DECLARED(SUBLANG_DUTCH_BELGIAN),

    DECLARED(VS_VERSION_INFO),
    {"VS_FFI_FILEFLAGSMASK", 0x3F},
    {"VS_FF_DEBUG", 0x01},
    {"VS_FF_PRERELEASE", 0x02},
    {"VOS_NT", 0x00040000},
    {"VOS__WINDOWS32", 0x00000004},
    {"VOS_NT_WINDOWS32", 0x00040004},
    {"VFT_UNKNOWN", 0},
    {"VFT_APP", 1},
    {"VFT_DLL", 2},
    {"VFT2_UNKNOWN", 0},

    {"CREATEPROCESS_MANIFEST_RESOURCE_ID", 1},
    {"RT_MANIFEST", 24},
    DECLARED(IDOK),
    DECLARED(IDCANCEL),
    DECLARED(IDYES),
    DECLARED(IDNO),
    {"IDCLOSE", 8},

    DECLARED(WS_OVERLAPPED),
    DECLARED(WS_POPUP),
    DECLARED(WS_CHILD),
    DECLARED(WS_VISIBLE),
    DECLARED(WS_DISABLED),
    DECLARED(WS_CAPTION),
    DECLARED(WS_SYSMENU),
    DECLARED(WS_THICKFRAME),
    DECLARED(WS_MINIMIZEBOX),
    DECLARED(WS_MAXIMIZEBOX),
    {"WS_BORDER", 0x00800000},
    {"WS_DLGFRAME", 0x00400000},
    {"WS_VSCROLL", 0x00200000},
    {"WS_HSCROLL", 0x00100000},
    {"WS_GROUP", 0x00020000},
    {"WS_TABSTOP", 0x00010000},
    DECLARED(WS_EX_TOPMOST),
    DECLARED(WS_EX_TOOLWINDOW),
    DECLARED(WS_EX_APPWINDOW),
    {"WS_EX_CLIENTEDGE", 0x00000200},
    {"WS_EX_STATICEDGE", 0x00020000},

    {"DS_ABSALIGN", 0x0001},
    {"DS_SYSMODAL", 0x0002},
    {"DS_3DLOOK", 0x0004},
    {"DS_FIXEDSYS", 0x0008},
    {"DS_SETFONT", 0x0040},
    {"DS_MODALFRAME", 0x0080},
    {"DS_SETFOREGROUND", 0x0200},
    {"DS_CONTROL", 0x0400},
    {"DS_CENTER", 0x0800},
    {"DS_SHELLFONT", 0x0048},

    {"BS_PUSHBUTTON", 0x0000},
    {"BS_DEFPUSHBUTTON", 0x0001},
    {"BS_CHECKBOX", 0x0002},
    {"BS_AUTOCHECKBOX", 0x0003},
    {"BS_RADIOBUTTON", 0x0004},
    {"BS_GROUPBOX", 0x0007},
    {"BS_AUTORADIOBUTTON", 0x0009},
    {"BS_OWNERDRAW", 0x000B},
    {"BS_ICON", 0x0040},
    {"BS_BITMAP", 0x0080},
    {"BS_MULTILINE", 0x2000},
    {"ES_LEFT", 0x0000},
    {"ES_CENTER", 0x0001},
    {"ES_RIGHT", 0x0002},
    {"ES_MULTILINE", 0x0004},
    {"ES_UPPERCASE", 0x0008},
    {"ES_PASSWORD", 0x0020},
    {"ES_AUTOVSCROLL", 0x0040},
    {"ES_AUTOHSCROLL", 0x0080},
    {"ES_READONLY", 0x0800},
    {"ES_NUMBER", 0x2000},
    {"CBS_SIMPLE", 0x0001},
    {"CBS_DROPDOWN", 0x0002},
    {"CBS_DROPDOWNLIST", 0x0003},
    {"CBS_AUTOHSCROLL", 0x0040},
    {"CBS_SORT", 0x0100},
    {"CBS_HASSTRINGS", 0x0200},
    {"LBS_NOTIFY", 0x0001},
    {"LBS_SORT", 0x0002},
    {"LBS_NOINTEGRALHEIGHT", 0x0100},
    {"SS_LEFT", 0x0000},
    {"SS_CENTER", 0x0001},
    {"SS_RIGHT", 0x0002},
    {"SS_ICON", 0x0003},
    {"SS_BLACKFRAME", 0x0007},
    {"SS_LEFTNOWORDWRAP", 0x000C},
    {"SS_ETCHEDHORZ", 0x0010},
    {"SS_NOTIFY", 0x0100},
    {"SS_CENTERIMAGE", 0x0200},
    {"SS_SUNKEN", 0x1000},

    {"TBS_AUTOTICKS", 0x0001},
    {"TBS_VERT", 0x0002},
    {"TBS_HORZ", 0x0000},
    {"TBS_BOTTOM", 0x0000},
    {"TBS_TOP", 0x0004},
    {"TBS_LEFT", 0x0004},
    {"TBS_RIGHT", 0x0000},
    {"TBS_BOTH", 0x0008},
    {"TBS_NOTICKS", 0x0010},
    {"TBS_ENABLESELRANGE", 0x0020},
    {"TBS_TOOLTIPS", 0x0100},
    {"PBS_SMOOTH", 0x01},
    {"PBS_VERTICAL", 0x04},
};

constexpr std::string_view kSystemHeaders[] = {"windows.h", "winuser.h", "winver.h", "winres.h",
                                               "commctrl.h"};

}  // namespace

bool IsSystemHeader(std::string_view name) {
  return std::ranges::find(kSystemHeaders, name) != std::end(kSystemHeaders);
}

std::optional<uint32_t> FindResourceConstant(std::string_view name) {
  const auto* constant = std::ranges::find(kConstants, name, &Constant::name);
  if (constant == std::end(kConstants)) return std::nullopt;
  return constant->value;
}

}  // namespace pal
