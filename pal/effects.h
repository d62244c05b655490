// What the program did to the machine: one typed record for each thing, in one ordered stream.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace pal {

using Time = std::chrono::microseconds;

// An item of a menu that is shown.
struct MenuItem {
  std::u16string text;  // as it stands, with "&" and short cut
  uint32_t command = 0;
  bool isSeparator = false;
  bool isChecked = false;
  bool isGrayed = false;
  bool isDefault = false;
  std::vector<MenuItem> popup;  // what it opens
};

struct TrayBalloon {
  std::u16string title;
  std::u16string text;
  uint32_t flags = 0;  // NIIF_...
  uint32_t timeoutMs = 0;
};

// One record a line.
// clang-format off
struct DebugOutput { std::u16string text; };
struct RegistryWrite { std::u16string key; std::u16string name; uint32_t type = 0; std::vector<uint8_t> data; };
struct FileWrite { std::u16string path; std::string bytes; };
struct SerialOpened { int port = 0; };
struct SerialClosed { int port = 0; };
struct SerialWrite { int port = 0; std::vector<uint8_t> bytes; };
struct MouseInput { uint32_t flags = 0; int32_t dx = 0, dy = 0; uint32_t data = 0; };
struct KeyInput { uint8_t virtualKey = 0; uint8_t scanCode = 0; uint32_t flags = 0; };
struct ExecutionState { uint32_t flags = 0; };
struct WindowsExit { uint32_t flags = 0; uint32_t reason = 0; };
// The end of the session is asked to wait; an empty reason: not any more.
struct SessionHeld { std::u16string reason; };
struct Beep { uint32_t type = 0; };
struct BoxShown { std::u16string text; std::u16string caption; uint32_t type = 0; };
struct BoxAnswered { int button = 0; };
struct DialogShown { std::u16string title; };
struct DialogHidden { std::u16string title; };
struct EllipseDrawn { int left = 0, top = 0, right = 0, bottom = 0; uint32_t colour = 0; };
struct FileBoxShown { std::u16string filter; };  // the name of the first filter
struct FileBoxAnswered { std::u16string path; };  // empty: cancelled
// A message that left the program: to a window of another program, or to all of them (className "*").
struct ForeignMessageSent {
  std::u16string className;
  uint32_t message = 0;
  uint64_t wParam = 0;
  int64_t lParam = 0;
  uint64_t copyDataTag = 0;
  std::vector<uint8_t> payload;
};
// An icon of the notification area. What was not told stays empty; a picture is the number of an icon resource,
// 0 for none.
struct TrayChange {
  enum class Action { kAdded, kChanged, kRemoved };
  Action action = Action::kAdded;
  uint32_t id = 0;
  std::optional<int> picture;
  std::optional<std::u16string> tooltip;
  std::optional<TrayBalloon> balloon;
};
struct TimerSet { uint64_t id = 0; uint32_t periodMs = 0; };
struct TimerKilled { uint64_t id = 0; };
struct LanguageSet { uint16_t language = 0; };
struct ModuleLoaded { std::u16string path; };
struct ModuleFreed { std::u16string path; };
// What a simulated device behind a module was told: "joystick", "mouse filter", "board".
struct DeviceCall { std::string device; std::string call; };
struct MenuShown { std::vector<MenuItem> items; int32_t x = 0, y = 0; uint32_t flags = 0; };
struct MenuChosen { uint32_t command = 0; std::u16string text; };  // command 0: closed without a choice
// A sound of the program's resources or of a file. A file that is missing sounds like Windows' own.
struct SoundPlayed { int resource = 0; std::u16string file; uint32_t flags = 0; bool isMissing = false; };
struct SoundStopped {};
struct PlaybackLevel { int percent = 0; };
struct PlaybackMute { bool isMuted = false; };
struct ForegroundSet { std::u16string className; };
// Another program, started through the shell.
struct ProgramExecuted {
  std::u16string verb;
  std::u16string file;
  std::u16string parameters;
  std::u16string directory;
  int show = 0;
};
// Whether a 32-bit program on a 64-bit Windows sees its own system directory in place of the real one.
struct RedirectionSet { bool isOn = true; };
struct ProgramStarted { std::u16string commandLine; };
struct ProgramEnded { int exitCode = 0; };
// clang-format on

// clang-format off
using AnyEffect = std::variant<
    DebugOutput,
    RegistryWrite,
    FileWrite,
    SerialOpened,
    SerialClosed,
    SerialWrite,
    MouseInput,
    KeyInput,
    ExecutionState,
    WindowsExit,
    SessionHeld,
    Beep,
    BoxShown,
    BoxAnswered,
    DialogShown,
    DialogHidden,
    EllipseDrawn,
    FileBoxShown,
    FileBoxAnswered,
    ForeignMessageSent,
    TimerSet,
    TimerKilled,
    LanguageSet,
    ModuleLoaded,
    ModuleFreed,
    DeviceCall,
    TrayChange,
    MenuShown,
    MenuChosen,
    SoundPlayed,
    SoundStopped,
    PlaybackLevel,
    PlaybackMute,
    ForegroundSet,
    ProgramExecuted,
    RedirectionSet,
    ProgramStarted,
    ProgramEnded>;
// clang-format on

// Copied and destroyed in effects.cpp alone, so that no other file compiles that for every kind.
struct EffectDetail : AnyEffect {
  using AnyEffect::AnyEffect;
  EffectDetail(const EffectDetail& other);
  EffectDetail(EffectDetail&& other) noexcept;
  EffectDetail& operator=(const EffectDetail& other);
  EffectDetail& operator=(EffectDetail&& other) noexcept;
  ~EffectDetail();
};

struct Effect {
  Time at{0};
  EffectDetail detail;
};

// One line for people and scenario files, without the time: "mouse left down", "key 0x1B up",
// "serial COM2 55 55 0A ...". The same wording everywhere.
std::string Describe(const Effect& effect);
// One JSON object without a line end: {"t_us":..., "kind":"mouse", ...}.
std::string ToJson(const Effect& effect);

// All effects of one kind.
template <class Detail>
std::vector<Detail> Select(const std::vector<Effect>& effects) {
  std::vector<Detail> found;
  for (const Effect& effect : effects)
    if (const auto* detail = std::get_if<Detail>(&effect.detail)) found.push_back(*detail);
  return found;
}

}  // namespace pal
