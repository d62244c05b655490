// Effects in words.
#include "pal/effects.h"

#include <windows.h>

#include <mmsystem.h>

#include <algorithm>
#include <cstring>
#include <string_view>

#include "pal/effect_words.h"
#include "pal/modules.h"

namespace pal {
namespace {

constexpr std::u16string_view kEverybody = u"*";

std::string FileName(std::u16string_view path) {
  return OneLine(FileNameOf(path));
}

std::string Quoted(std::u16string_view text) {
  return "\"" + OneLine(text) + "\"";
}

std::string DescribeValue(const RegistryWrite& write) {
  if (write.type == REG_DWORD && write.data.size() == sizeof(int32_t)) {
    int32_t number = 0;
    std::memcpy(&number, write.data.data(), sizeof(number));
    return std::to_string(number);
  }
  if (write.type != REG_SZ) return HexBytes(write.data);
  std::u16string text;
  for (size_t at = 0; at + 1 < write.data.size(); at += 2)
    text.push_back(static_cast<char16_t>(write.data[at] | write.data[at + 1] << 8));
  while (text.ends_with(u'\0')) text.pop_back();
  return Quoted(text);
}

// A long payload is told by its beginning.
std::string DescribePayload(std::span<const uint8_t> payload) {
  constexpr size_t kMostBytes = 64;
  if (payload.size() <= kMostBytes) return HexBytes(payload);
  return HexBytes(payload.first(kMostBytes)) + " ... " + std::to_string(payload.size()) + " bytes";
}

struct MouseRow {
  uint32_t flag;
  std::string_view words;
};
constexpr MouseRow kMouseRows[] = {
    {MOUSEEVENTF_LEFTDOWN, "left down"},     {MOUSEEVENTF_LEFTUP, "left up"},
    {MOUSEEVENTF_RIGHTDOWN, "right down"},   {MOUSEEVENTF_RIGHTUP, "right up"},
    {MOUSEEVENTF_MIDDLEDOWN, "middle down"}, {MOUSEEVENTF_MIDDLEUP, "middle up"},
};

struct ButtonRow {
  int button;
  std::string_view word;
};
constexpr ButtonRow kButtonRows[] = {{IDOK, "ok"},       {IDCANCEL, "cancel"}, {IDABORT, "abort"},
                                     {IDRETRY, "retry"}, {IDIGNORE, "ignore"}, {IDYES, "yes"},
                                     {IDNO, "no"}};

std::string DescribeItem(const MenuItem& item);

// "Options (default) | - | Language > [English | Nederlands (checked)]"
std::string DescribeItems(const std::vector<MenuItem>& items) {
  std::string words;
  for (const MenuItem& item : items) words.append(words.empty() ? "" : " | ").append(DescribeItem(item));
  return words;
}

std::string DescribeItem(const MenuItem& item) {
  if (item.isSeparator) return "-";
  std::string words = OneLine(MenuLabel(item.text));
  if (item.isDefault) words += " (default)";
  if (item.isChecked) words += " (checked)";
  if (item.isGrayed) words += " (gray)";
  if (!item.popup.empty()) words.append(" > [").append(DescribeItems(item.popup)).append("]");
  return words;
}

std::string DescribeIcon(const TrayChange& e) {
  std::string words = "tray " + std::to_string(e.id);
  if (e.action == TrayChange::Action::kAdded) words += " added";
  if (e.action == TrayChange::Action::kRemoved) words += " removed";
  if (e.picture) words += " picture " + std::to_string(*e.picture);
  if (e.tooltip) words += " tooltip " + Quoted(*e.tooltip);
  if (e.balloon) words += " balloon " + Quoted(e.balloon->title) + ": " + OneLine(e.balloon->text);
  return words;
}

std::string DescribeSound(const SoundPlayed& e) {
  std::string words = "sound ";
  words += e.file.empty() ? std::to_string(e.resource) : OneLine(e.file);
  if (e.isMissing) words += " (missing)";
  if ((e.flags & SND_LOOP) != 0) words += " again and again";
  return words;
}

// One wording for each kind of effect.
struct Words {
  std::string operator()(const DebugOutput& e) const { return "debug " + OneLine(e.text); }
  std::string operator()(const RegistryWrite& e) const {
    return "registry " + (e.name.empty() ? "(unnamed)" : OneLine(e.name)) + " = " + DescribeValue(e);
  }
  std::string operator()(const FileWrite& e) const {
    return "file " + FileName(e.path) + ": " + OneLine(e.bytes);
  }
  std::string operator()(const SerialOpened& e) const {
    return "serial COM" + std::to_string(e.port) + " opened";
  }
  std::string operator()(const SerialClosed& e) const {
    return "serial COM" + std::to_string(e.port) + " closed";
  }
  std::string operator()(const SerialWrite& e) const {
    return "serial COM" + std::to_string(e.port) + " " + HexBytes(e.bytes);
  }
  std::string operator()(const MouseInput& e) const {
    std::string words = "mouse";
    uint32_t rest = e.flags;
    for (const MouseRow& row : kMouseRows) {
      if ((e.flags & row.flag) != 0) words += " " + std::string(row.words);
      rest &= ~row.flag;
    }
    if ((e.flags & MOUSEEVENTF_WHEEL) != 0) words += " wheel " + std::to_string(static_cast<int32_t>(e.data));
    if ((e.flags & MOUSEEVENTF_MOVE) != 0) {
      words += (e.flags & MOUSEEVENTF_ABSOLUTE) != 0 ? " move to " : " move ";
      words += std::to_string(e.dx) + " " + std::to_string(e.dy);
    }
    rest &= ~(MOUSEEVENTF_WHEEL | MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE);
    return rest == 0 ? words : words + " flags " + Hex(rest, 4);
  }
  std::string operator()(const KeyInput& e) const {
    const uint32_t rest = e.flags & ~(KEYEVENTF_KEYUP | KEYEVENTF_EXTENDEDKEY);
    return "key " + Hex(e.virtualKey, 2) + ((e.flags & KEYEVENTF_KEYUP) != 0 ? " up" : " down") +
           ((e.flags & KEYEVENTF_EXTENDEDKEY) != 0 ? " extended" : "") +
           (rest == 0 ? "" : " flags " + Hex(rest, 4));
  }
  std::string operator()(const ExecutionState& e) const {
    if (e.flags == (ES_SYSTEM_REQUIRED | ES_DISPLAY_REQUIRED)) return "awake";
    if (e.flags == (ES_CONTINUOUS | ES_SYSTEM_REQUIRED | ES_DISPLAY_REQUIRED)) return "stays awake";
    if (e.flags == ES_CONTINUOUS) return "may sleep";
    return "execution state " + Hex(e.flags, 8);
  }
  std::string operator()(const WindowsExit& e) const {
    if (e.flags == (EWX_POWEROFF | EWX_FORCE)) return "power off, reason " + Hex(e.reason, 5);
    return "exit windows " + Hex(e.flags, 2) + ", reason " + Hex(e.reason, 5);
  }
  std::string operator()(const SessionHeld& e) const {
    return e.reason.empty() ? "session may end" : "session held: " + OneLine(e.reason);
  }
  std::string operator()(const Beep& e) const { return e.type == MB_OK ? "beep" : "beep " + Hex(e.type, 2); }
  std::string operator()(const BoxShown& e) const {
    return "box " + Quoted(e.caption) + ": " + OneLine(e.text);
  }
  std::string operator()(const BoxAnswered& e) const {
    const auto* row = std::ranges::find(kButtonRows, e.button, &ButtonRow::button);
    return "answer " + (row == std::end(kButtonRows) ? std::to_string(e.button) : std::string(row->word));
  }
  std::string operator()(const DialogShown& e) const { return "dialog " + Quoted(e.title) + " shown"; }
  std::string operator()(const DialogHidden& e) const { return "dialog " + Quoted(e.title) + " hidden"; }
  std::string operator()(const EllipseDrawn& e) const {
    return "ellipse " + std::to_string(e.left) + " " + std::to_string(e.top) + " " + std::to_string(e.right) +
           " " + std::to_string(e.bottom) + " colour " + Hex(e.colour, 6);
  }
  std::string operator()(const FileBoxShown& e) const { return "file box " + Quoted(e.filter); }
  std::string operator()(const FileBoxAnswered& e) const {
    return e.path.empty() ? "file box cancelled" : "file chosen " + OneLine(e.path);
  }
  std::string operator()(const ForeignMessageSent& e) const {
    if (e.message == WM_COPYDATA)
      return "data " + std::to_string(e.copyDataTag) + " to " + OneLine(e.className) + ": " +
             DescribePayload(e.payload);
    const std::string parameters = " " + std::to_string(e.wParam) + " " + std::to_string(e.lParam);
    if (e.className == kEverybody) return "notify " + Hex(e.message, 4) + parameters;
    return "message " + Hex(e.message, 4) + " to " + OneLine(e.className) + parameters;
  }
  std::string operator()(const TimerSet& e) const {
    return "timer " + std::to_string(e.id) + " set " + std::to_string(e.periodMs) + " ms";
  }
  std::string operator()(const TimerKilled& e) const { return "timer " + std::to_string(e.id) + " killed"; }
  std::string operator()(const LanguageSet& e) const { return "language " + Hex(e.language, 4); }
  std::string operator()(const ModuleLoaded& e) const { return "library " + FileName(e.path) + " loaded"; }
  std::string operator()(const ModuleFreed& e) const { return "library " + FileName(e.path) + " freed"; }
  std::string operator()(const DeviceCall& e) const { return e.device + " " + e.call; }
  std::string operator()(const TrayChange& e) const { return DescribeIcon(e); }
  std::string operator()(const MenuShown& e) const { return "menu " + DescribeItems(e.items); }
  std::string operator()(const MenuChosen& e) const {
    if (e.command == 0) return "menu closed";
    return "chosen " + std::to_string(e.command) + " " + OneLine(MenuLabel(e.text));
  }
  std::string operator()(const SoundPlayed& e) const { return DescribeSound(e); }
  std::string operator()(const SoundStopped& /*e*/) const { return "sound stopped"; }
  std::string operator()(const PlaybackLevel& e) const {
    return "playback level " + std::to_string(e.percent) + " %";
  }
  std::string operator()(const PlaybackMute& e) const {
    return e.isMuted ? "playback muted" : "playback not muted";
  }
  std::string operator()(const ForegroundSet& e) const { return "foreground " + OneLine(e.className); }
  std::string operator()(const ProgramExecuted& e) const {
    return (e.verb.empty() ? "run " : OneLine(e.verb) + " ") + FileName(e.file) +
           (e.parameters.empty() ? "" : " " + OneLine(e.parameters));
  }
  std::string operator()(const RedirectionSet& e) const {
    return std::string("system directory ") + (e.isOn ? "redirected" : "real");
  }
  std::string operator()(const ProgramStarted& e) const {
    return "program starts: " + OneLine(e.commandLine);
  }
  std::string operator()(const ProgramEnded& e) const {
    return "program ends with " + std::to_string(e.exitCode);
  }
};

}  // namespace

EffectDetail::EffectDetail(const EffectDetail& other) = default;
EffectDetail::EffectDetail(EffectDetail&& other) noexcept = default;
EffectDetail& EffectDetail::operator=(const EffectDetail& other) = default;
EffectDetail& EffectDetail::operator=(EffectDetail&& other) noexcept = default;
EffectDetail::~EffectDetail() = default;

std::string Describe(const Effect& effect) {
  return std::visit(Words(), effect.detail);
}

}  // namespace pal
