// What each kind of effect is called, how it reads, and what its fields are.
#include "pal/machine/effects.h"

#include <windows.h>

#include <mmsystem.h>

#include <algorithm>
#include <concepts>
#include <cstring>
#include <string_view>

#include "pal/kernel/modules.h"
#include "pal/machine/effect_words.h"
#include "pal/text/unicode.h"

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
    {MOUSEEVENTF_LEFTDOWN, "left down"},
    {MOUSEEVENTF_LEFTUP, "left up"},
    {MOUSEEVENTF_RIGHTDOWN, "right down"},
    {MOUSEEVENTF_RIGHTUP, "right up"},
};

struct ButtonRow {
  int button;
  std::string_view word;
};
constexpr ButtonRow kButtonRows[] = {{IDOK, "ok"}, {IDCANCEL, "cancel"}, {IDYES, "yes"}, {IDNO, "no"}};

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

std::string DescribeMouse(const MouseInput& e) {
  std::string words = "mouse";
  for (const MouseRow& row : kMouseRows)
    if ((e.flags & row.flag) != 0) words += " " + std::string(row.words);
  if ((e.flags & MOUSEEVENTF_MOVE) != 0)
    words += " move " + std::to_string(e.dx) + " " + std::to_string(e.dy);
  return words;
}

std::string DescribeMessage(const ForeignMessageSent& e) {
  const std::string receiver = OneLine(e.className);
  if (e.message == WM_COPYDATA)
    return "data " + std::to_string(e.copyDataTag) + " to " + receiver + ": " + DescribePayload(e.payload);
  const std::string parameters = " " + std::to_string(e.wParam) + " " + std::to_string(e.lParam);
  if (e.className == kEverybody) return "notify " + Hex(e.message, 4) + parameters;
  return "message " + Hex(e.message, 4) + " to " + receiver + parameters;
}

std::string JsonText(std::string_view utf8) {
  std::string text = "\"";
  for (const char c : utf8) {
    const auto byte = static_cast<uint8_t>(c);
    if (c == '"' || c == '\\')
      text += {'\\', c};
    else if (byte < 0x20 || byte == 0x7F)
      text += "\\u00" + Hex(byte, 2).substr(2);
    else
      text.push_back(c);
  }
  return text + "\"";
}

std::string JsonItems(const std::vector<MenuItem>& items);

std::string JsonItem(const MenuItem& item) {
  if (item.isSeparator) return "null";
  std::string text = "{\"text\":" + JsonText(ToUtf8(item.text));
  if (item.popup.empty()) text += ",\"command\":" + std::to_string(item.command);
  if (item.isDefault) text += ",\"default\":true";
  if (item.isChecked) text += ",\"checked\":true";
  if (item.isGrayed) text += ",\"grayed\":true";
  if (!item.popup.empty()) text += ",\"items\":" + JsonItems(item.popup);
  return text + "}";
}

std::string JsonItems(const std::vector<MenuItem>& items) {
  std::string text;
  for (const MenuItem& item : items) text.append(text.empty() ? "" : ",").append(JsonItem(item));
  return "[" + text + "]";
}

// A field of a record: its name, and its value as JSON.
struct Field {
  Field(std::string_view fieldName, std::u16string_view text)
      : name(fieldName), value(JsonText(ToUtf8(text))) {}
  // UTF-8, or what is not, byte by byte.
  Field(std::string_view fieldName, std::string_view text)
      : name(fieldName), value(JsonText(DecodeUtf8(text).valid ? std::string(text) : OneLine(text))) {}
  Field(std::string_view fieldName, const std::vector<uint8_t>& bytes)
      : name(fieldName), value(JsonText(HexBytes(bytes))) {}
  Field(std::string_view fieldName, const std::vector<MenuItem>& items)
      : name(fieldName), value(JsonItems(items)) {}
  Field(std::string_view fieldName, std::integral auto number)
      : name(fieldName), value(std::to_string(number)) {}

  bool operator==(const Field&) const = default;

  std::string_view name;
  std::string value;
};

struct Description {
  std::string_view kind;
  std::string words;
  std::vector<Field> fields;
};

std::string Number(std::integral auto number) {
  return std::to_string(number);
}

std::string Port(int port) {
  return "serial COM" + Number(port);
}

// ---- one description for each kind of effect ----------------------------------------------------------------

// clang-format off
Description Of(const DebugOutput& e) {
  return {"debug", "debug " + OneLine(e.text), {{"output", e.text}}};
}
Description Of(const RegistryWrite& e) {
  return {"registry", "registry " + (e.name.empty() ? "(unnamed)" : OneLine(e.name)) + " = " + DescribeValue(e),
          {{"key", e.key}, {"name", e.name}, {"type", e.type}, {"data", e.data}}};
}
Description Of(const RegistryOpened& e) {
  return {"registry key", std::string(e.isNew ? "new" : "opened") + " registry key " + OneLine(e.key) +
          " access " + Hex(e.access, 5),
          {{"key", e.key}, {"access", e.access}, {"new", e.isNew}}};
}
Description Of(const FileOpened& e) {
  return {"file opened", "opened file " + FileName(e.path) + " access " + Hex(e.access, 8) + " share " +
          Hex(e.share, 1) + " disposition " + Number(e.disposition),
          {{"path", e.path}, {"access", e.access}, {"share", e.share}, {"disposition", e.disposition},
           {"flags", e.flags}}};
}
Description Of(const FileWrite& e) {
  return {"file", "file " + FileName(e.path) + ": " + OneLine(e.bytes), {{"path", e.path}, {"bytes", e.bytes}}};
}
Description Of(const SerialOpened& e) {
  return {"serial opened", Port(e.port) + " opened",
          {{"port", e.port}, {"access", e.access}, {"share", e.share}}};
}
Description Of(const SerialClosed& e) {
  return {"serial closed", Port(e.port) + " closed", {{"port", e.port}}};
}
Description Of(const SerialPurged& e) {
  return {"serial purged", "purged COM" + Number(e.port) + " " + Hex(e.flags, 1),
          {{"port", e.port}, {"flags", e.flags}}};
}
Description Of(const SerialWrite& e) {
  return {"serial", Port(e.port) + " " + HexBytes(e.bytes), {{"port", e.port}, {"bytes", e.bytes}}};
}
Description Of(const MouseInput& e) {
  return {"mouse", DescribeMouse(e), {{"flags", e.flags}, {"dx", e.dx}, {"dy", e.dy}, {"data", e.data}}};
}
Description Of(const KeyInput& e) {
  return {"key", "key " + Hex(e.virtualKey, 2) + ((e.flags & KEYEVENTF_KEYUP) != 0 ? " up" : " down") +
          ((e.flags & KEYEVENTF_EXTENDEDKEY) != 0 ? " extended" : ""),
          {{"key", e.virtualKey}, {"scan", e.scanCode}, {"flags", e.flags}}};
}
Description Of(const ExecutionState& e) {
  constexpr uint32_t kAwake = ES_SYSTEM_REQUIRED | ES_DISPLAY_REQUIRED;
  return {"execution state",
          e.flags == kAwake                     ? "awake"
          : e.flags == (ES_CONTINUOUS | kAwake) ? "stays awake"
          : e.flags == ES_CONTINUOUS            ? "may sleep"
                                                : "execution state " + Hex(e.flags, 8),
          {{"flags", e.flags}}};
}
Description Of(const WindowsExit& e) {
  return {"windows exit", (e.flags == (EWX_POWEROFF | EWX_FORCE) ? "power off" : "exit windows " +
          Hex(e.flags, 2)) + ", reason " + Hex(e.reason, 5),
          {{"flags", e.flags}, {"reason", e.reason}}};
}
Description Of(const SessionHeld& e) {
  return {"session held", e.reason.empty() ? "session may end" : "session held: " + OneLine(e.reason),
          {{"reason", e.reason}}};
}
Description Of(const Beep& e) {
  return {"beep", e.type == MB_OK ? "beep" : "beep " + Hex(e.type, 2), {{"type", e.type}}};
}
Description Of(const BoxShown& e) {
  return {"box", "box " + Quoted(e.caption) + ": " + OneLine(e.text),
          {{"caption", e.caption}, {"message", e.text}, {"type", e.type}, {"owner", e.owner}}};
}
Description Of(const BoxAnswered& e) {
  const auto* row = std::ranges::find(kButtonRows, e.button, &ButtonRow::button);
  return {"answer", "answer " + (row == std::end(kButtonRows) ? Number(e.button) : std::string(row->word)),
          {{"button", e.button}}};
}
Description Of(const DialogShown& e) {
  return {"dialog shown", "dialog " + Quoted(e.title) + " shown",
          {{"title", e.title}, {"x", e.x}, {"y", e.y}, {"width", e.width}, {"height", e.height},
           {"topmost", e.isTopmost}, {"owner", e.owner}}};
}
Description Of(const DialogHidden& e) {
  return {"dialog hidden", "dialog " + Quoted(e.title) + " hidden", {{"title", e.title}}};
}
Description Of(const LabelChanged& e) {
  std::u16string words;
  for (const char16_t c : e.text) {
    const bool isBlank = c == u' ' || c == u'\r' || c == u'\n';
    if (!isBlank || !words.ends_with(u' ')) words += isBlank ? u' ' : c;
  }
  return {"label changed", "dialog " + Quoted(e.title) + ": " + OneLine(words),
          {{"title", e.title}, {"label", e.text}}};
}
Description Of(const WindowPlaced& e) {
  return {"window placed", "placed window " + Quoted(e.title) + (e.isTopmost ? " topmost" : ""),
          {{"title", e.title}, {"x", e.x}, {"y", e.y}, {"width", e.width}, {"height", e.height},
           {"topmost", e.isTopmost}, {"flags", e.flags}}};
}
Description Of(const EllipseDrawn& e) {
  return {"ellipse", "ellipse " + Number(e.left) + " " + Number(e.top) + " " + Number(e.right) + " " +
          Number(e.bottom) + " colour " + Hex(e.colour, 6),
          {{"left", e.left}, {"top", e.top}, {"right", e.right}, {"bottom", e.bottom}, {"colour", e.colour}}};
}
Description Of(const FileBoxShown& e) {
  return {"file box", "file box " + Quoted(e.filter),
          {{"filter", e.filter}, {"extension", e.extension}, {"name", e.name}, {"flags", e.flags}}};
}
Description Of(const FileBoxAnswered& e) {
  return {"file chosen", e.path.empty() ? "file box cancelled" : "file chosen " + OneLine(e.path),
          {{"path", e.path}}};
}
Description Of(const ForeignMessageSent& e) {
  return {"message", DescribeMessage(e),
          {{"window_class", e.className}, {"message", e.message}, {"w", e.wParam}, {"l", e.lParam},
           {"tag", e.copyDataTag}, {"payload", e.payload}, {"posted", e.isPosted}, {"patience", e.patience},
           {"limit_ms", e.limitMs}}};
}
Description Of(const TimerSet& e) {
  return {"timer set", "timer " + Number(e.id) + " set " + Number(e.periodMs) + " ms",
          {{"id", e.id}, {"period_ms", e.periodMs}, {"window_class", e.window}}};
}
Description Of(const TimerKilled& e) {
  return {"timer killed", "timer " + Number(e.id) + " killed", {{"id", e.id}, {"window_class", e.window}}};
}
Description Of(const LanguageSet& e) {
  return {"language", "language " + Hex(e.language, 4), {{"language", e.language}, {"locale", e.isLocale}}};
}
Description Of(const ModuleLoaded& e) {
  return {"module loaded", "library " + FileName(e.path) + " loaded",
          {{"path", e.path}, {"flags", e.flags}, {"error mode", e.search.errorMode},
           {"places", e.search.places}}};
}
Description Of(const ModuleFreed& e) {
  return {"module freed", "library " + FileName(e.path) + " freed", {{"path", e.path}}};
}
Description Of(const DeviceCall& e) {
  return {"device", e.device + " " + e.call,
          {{"device", std::string_view(e.device)}, {"call", std::string_view(e.call)}}};
}
Description Of(const TrayChange& e) {
  constexpr int kUnscaledIcon = 16;
  constexpr std::string_view kActions[] = {"added", "changed", "removed"};
  const std::string_view action = kActions[static_cast<size_t>(e.action)];
  Description tray = {"tray", "tray " + Number(e.id), {{"id", e.id}, {"action", action}}};
  if (e.action != TrayChange::Action::kChanged) tray.words.append(" ").append(action);
  if (e.picture) {
    tray.words += " picture " + Number(*e.picture);
    if (e.pictureSize != kUnscaledIcon) tray.words += " of " + Number(e.pictureSize) + " pixels";
    tray.fields.emplace_back("picture", *e.picture);
    tray.fields.emplace_back("size", e.pictureSize);
  }
  if (e.tooltip) {
    tray.words += " tooltip " + Quoted(*e.tooltip);
    tray.fields.emplace_back("tooltip", *e.tooltip);
  }
  if (e.balloon) {
    tray.words += " balloon " + Quoted(e.balloon->title) + ": " + OneLine(e.balloon->text);
    tray.fields.insert(tray.fields.end(), {{"balloon_title", e.balloon->title},
                                           {"balloon", e.balloon->text},
                                           {"balloon_flags", e.balloon->flags},
                                           {"timeout_ms", e.balloon->timeoutMs}});
  }
  return tray;
}
Description Of(const MenuShown& e) {
  return {"menu", "menu " + DescribeItems(e.items),
          {{"items", e.items}, {"x", e.x}, {"y", e.y}, {"flags", e.flags}}};
}
Description Of(const MenuChosen& e) {
  return {"chosen", e.command == 0 ? "menu closed" : "chosen " + Number(e.command) + " " +
          OneLine(MenuLabel(e.text)),
          {{"command", e.command}, {"item", e.text}}};
}
Description Of(const SoundPlayed& e) {
  return {"sound", "sound " + (e.file.empty() ? Number(e.resource) : OneLine(e.file)) +
          (e.isMissing ? " (missing)" : "") + ((e.flags & SND_LOOP) != 0 ? " again and again" : ""),
          {{"resource", e.resource}, {"file", e.file}, {"flags", e.flags}, {"missing", e.isMissing}}};
}
Description Of(const SoundStopped& /*e*/) {
  return {"sound stopped", "sound stopped", {}};
}
Description Of(const PlaybackLevel& e) {
  return {"playback level", "playback level " + Number(e.percent) + " %", {{"percent", e.percent}}};
}
Description Of(const PlaybackMute& e) {
  return {"playback mute", e.isMuted ? "playback muted" : "playback not muted", {{"muted", e.isMuted}}};
}
Description Of(const ForegroundSet& e) {
  return {"foreground", "foreground " + (e.className.empty() ? "to anybody" : OneLine(e.className)),
          {{"window_class", e.className}}};
}
Description Of(const ProgramExecuted& e) {
  return {"program executed", (e.verb.empty() ? "run " : OneLine(e.verb) + " ") + FileName(e.file) +
          (e.parameters.empty() ? "" : " " + OneLine(e.parameters)),
          {{"verb", e.verb}, {"file", e.file}, {"parameters", e.parameters}, {"directory", e.directory},
           {"show", e.show}, {"flags", e.flags}, {"error mode", e.errorMode}}};
}
Description Of(const RedirectionSet& e) {
  return {"redirection", std::string("system directory ") + (e.isOn ? "redirected" : "real"), {{"on", e.isOn}}};
}
Description Of(const ProgramStarted& e) {
  return {"program started", "program starts: " + OneLine(e.commandLine), {{"command_line", e.commandLine}}};
}
Description Of(const ProgramEnded& e) {
  return {"program ended", "program ends with " + Number(e.exitCode), {{"exit_code", e.exitCode}}};
}
// clang-format on

Description DescriptionOf(const EffectDetail& detail) {
  return std::visit([](const auto& one) { return Of(one); }, static_cast<const AnyEffect&>(detail));
}

}  // namespace

EffectDetail::EffectDetail(const EffectDetail& other) = default;
EffectDetail::EffectDetail(EffectDetail&& other) noexcept = default;
EffectDetail& EffectDetail::operator=(const EffectDetail& other) = default;
EffectDetail& EffectDetail::operator=(EffectDetail&& other) noexcept = default;
EffectDetail::~EffectDetail() = default;

std::string Describe(const Effect& effect) {
  return DescriptionOf(effect.detail).words;
}

std::string ToJson(const Effect& effect) {
  const Description description = DescriptionOf(effect.detail);
  std::string text = "{\"t_us\":" + Number(effect.at.count()) + ",\"kind\":" + JsonText(description.kind);
  for (const Field& field : description.fields) text += "," + JsonText(field.name) + ":" + field.value;
  return text + ",\"text\":" + JsonText(description.words) + "}";
}

}  // namespace pal
