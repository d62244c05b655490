// Effects as JSON objects, for traces.
#include <concepts>
#include <string_view>

#include "pal/effect_words.h"
#include "pal/effects.h"
#include "pal/unicode.h"

namespace pal {
namespace {

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

// Names and values of one effect, in order.
class Object {
 public:
  explicit Object(std::string_view kind) : kind_(kind) {}

  Object With(std::string_view name, std::u16string_view text) && {
    return Add(name, JsonText(ToUtf8(text)));
  }
  Object With(std::string_view name, const std::vector<uint8_t>& bytes) && {
    return Add(name, JsonText(HexBytes(bytes)));
  }
  // UTF-8, or what is not, byte by byte.
  Object With(std::string_view name, std::string_view text) && {
    return Add(name, JsonText(DecodeUtf8(text).valid ? std::string(text) : OneLine(text)));
  }
  Object With(std::string_view name, const std::vector<MenuItem>& items) && {
    return Add(name, JsonItems(items));
  }
  Object With(std::string_view name, std::integral auto number) && {
    return Add(name, std::to_string(number));
  }

  [[nodiscard]] std::string Text(const Effect& effect) const {
    return "{\"t_us\":" + std::to_string(effect.at.count()) + ",\"kind\":" + JsonText(kind_) + fields_ +
           ",\"text\":" + JsonText(Describe(effect)) + "}";
  }

 private:
  Object Add(std::string_view name, const std::string& value) {
    fields_ += "," + JsonText(name) + ":" + value;
    return std::move(*this);
  }

  std::string_view kind_;
  std::string fields_;
};

Object Fields(const DebugOutput& e) {
  return Object("debug").With("output", e.text);
}
Object Fields(const RegistryWrite& e) {
  return Object("registry").With("key", e.key).With("name", e.name).With("type", e.type).With("data", e.data);
}
Object Fields(const FileWrite& e) {
  return Object("file").With("path", e.path).With("bytes", e.bytes);
}
Object Fields(const SerialOpened& e) {
  return Object("serial opened").With("port", e.port);
}
Object Fields(const SerialClosed& e) {
  return Object("serial closed").With("port", e.port);
}
Object Fields(const SerialWrite& e) {
  return Object("serial").With("port", e.port).With("bytes", e.bytes);
}
Object Fields(const MouseInput& e) {
  return Object("mouse").With("flags", e.flags).With("dx", e.dx).With("dy", e.dy).With("data", e.data);
}
Object Fields(const KeyInput& e) {
  return Object("key").With("key", e.virtualKey).With("scan", e.scanCode).With("flags", e.flags);
}
Object Fields(const ExecutionState& e) {
  return Object("execution state").With("flags", e.flags);
}
Object Fields(const WindowsExit& e) {
  return Object("windows exit").With("flags", e.flags).With("reason", e.reason);
}
Object Fields(const SessionHeld& e) {
  return Object("session held").With("reason", e.reason);
}
Object Fields(const Beep& e) {
  return Object("beep").With("type", e.type);
}
Object Fields(const BoxShown& e) {
  return Object("box").With("caption", e.caption).With("message", e.text).With("type", e.type);
}
Object Fields(const BoxAnswered& e) {
  return Object("answer").With("button", e.button);
}
Object Fields(const DialogShown& e) {
  return Object("dialog shown").With("title", e.title);
}
Object Fields(const DialogHidden& e) {
  return Object("dialog hidden").With("title", e.title);
}
Object Fields(const EllipseDrawn& e) {
  return Object("ellipse")
      .With("left", e.left)
      .With("top", e.top)
      .With("right", e.right)
      .With("bottom", e.bottom)
      .With("colour", e.colour);
}
Object Fields(const FileBoxShown& e) {
  return Object("file box").With("filter", e.filter);
}
Object Fields(const FileBoxAnswered& e) {
  return Object("file chosen").With("path", e.path);
}
Object Fields(const ForeignMessageSent& e) {
  return Object("message")
      .With("window_class", e.className)
      .With("message", e.message)
      .With("w", e.wParam)
      .With("l", e.lParam)
      .With("tag", e.copyDataTag)
      .With("payload", e.payload);
}
Object Fields(const TimerSet& e) {
  return Object("timer set").With("id", e.id).With("period_ms", e.periodMs);
}
Object Fields(const TimerKilled& e) {
  return Object("timer killed").With("id", e.id);
}
Object Fields(const LanguageSet& e) {
  return Object("language").With("language", e.language);
}
Object Fields(const ModuleLoaded& e) {
  return Object("module loaded").With("path", e.path);
}
Object Fields(const ModuleFreed& e) {
  return Object("module freed").With("path", e.path);
}
Object Fields(const DeviceCall& e) {
  return Object("device").With("device", std::string_view(e.device)).With("call", std::string_view(e.call));
}
std::string_view ActionName(TrayChange::Action action) {
  switch (action) {
    case TrayChange::Action::kAdded:
      return "added";
    case TrayChange::Action::kChanged:
      return "changed";
    case TrayChange::Action::kRemoved:
      return "removed";
  }
  return {};
}

Object Fields(const TrayChange& e) {
  Object object = Object("tray").With("id", e.id).With("action", ActionName(e.action));
  if (e.picture) object = std::move(object).With("picture", *e.picture);
  if (e.tooltip) object = std::move(object).With("tooltip", *e.tooltip);
  if (e.balloon)
    object = std::move(object)
                 .With("balloon_title", e.balloon->title)
                 .With("balloon", e.balloon->text)
                 .With("balloon_flags", e.balloon->flags)
                 .With("timeout_ms", e.balloon->timeoutMs);
  return object;
}
Object Fields(const MenuShown& e) {
  return Object("menu").With("items", e.items).With("x", e.x).With("y", e.y).With("flags", e.flags);
}
Object Fields(const MenuChosen& e) {
  return Object("chosen").With("command", e.command).With("item", e.text);
}
Object Fields(const SoundPlayed& e) {
  return Object("sound")
      .With("resource", e.resource)
      .With("file", e.file)
      .With("flags", e.flags)
      .With("missing", e.isMissing ? 1 : 0);
}
Object Fields(const SoundStopped& /*e*/) {
  return Object("sound stopped");
}
Object Fields(const PlaybackLevel& e) {
  return Object("playback level").With("percent", e.percent);
}
Object Fields(const PlaybackMute& e) {
  return Object("playback mute").With("muted", e.isMuted ? 1 : 0);
}
Object Fields(const ForegroundSet& e) {
  return Object("foreground").With("window_class", e.className);
}
Object Fields(const ProgramExecuted& e) {
  return Object("program executed")
      .With("verb", e.verb)
      .With("file", e.file)
      .With("parameters", e.parameters)
      .With("directory", e.directory)
      .With("show", e.show);
}
Object Fields(const RedirectionSet& e) {
  return Object("redirection").With("on", e.isOn ? 1 : 0);
}
Object Fields(const ProgramStarted& e) {
  return Object("program started").With("command_line", e.commandLine);
}
Object Fields(const ProgramEnded& e) {
  return Object("program ended").With("exit_code", e.exitCode);
}

}  // namespace

std::string ToJson(const Effect& effect) {
  return std::visit([](const auto& detail) { return Fields(detail); }, effect.detail).Text(effect);
}

}  // namespace pal
