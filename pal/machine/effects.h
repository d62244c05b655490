// What the program did to the machine: one typed record for each thing, in one ordered stream. effects.cpp
// describes each kind once: its name, its words and its fields; text, JSON and comparison come from there.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <ostream>
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
// A key that the program opened, or made; `access` is KEY_...
struct RegistryOpened { std::u16string key; uint32_t access = 0; bool isNew = false; };
struct FileOpened {
  std::u16string path;
  uint32_t access = 0;  // GENERIC_...
  uint32_t share = 0;   // FILE_SHARE_...
  uint32_t disposition = 0;
  uint32_t flags = 0;
};
struct FileWrite { std::u16string path; std::string bytes; };
struct SerialOpened { int port = 0; uint32_t access = 0; uint32_t share = 0; };
struct SerialPurged { int port = 0; uint32_t flags = 0; };
struct SerialClosed { int port = 0; };
struct SerialWrite { int port = 0; std::vector<uint8_t> bytes; };
struct MouseInput { uint32_t flags = 0; int32_t dx = 0, dy = 0; uint32_t data = 0; };
struct KeyInput { uint8_t virtualKey = 0; uint8_t scanCode = 0; uint32_t flags = 0; };
struct ExecutionState { uint32_t flags = 0; };
struct WindowsExit { uint32_t flags = 0; uint32_t reason = 0; };
// The end of the session is asked to wait; an empty reason: not any more.
struct SessionHeld { std::u16string reason; };
struct Beep { uint32_t type = 0; };
struct BoxShown { std::u16string text; std::u16string caption; uint32_t type = 0; std::u16string owner = {}; };  // its class
struct BoxAnswered { int button = 0; };
struct DialogShown {
  std::u16string title;
  int x = 0, y = 0, width = 0, height = 0;
  bool isTopmost = false;
  std::u16string owner = {};  // its class
};
struct DialogHidden { std::u16string title; };
// A label of a dialog that is shown says something else.
struct LabelChanged { std::u16string title; std::u16string text; };
struct EllipseDrawn { int left = 0, top = 0, right = 0, bottom = 0; uint32_t colour = 0; };
// SetWindowPos; `flags` say what of it counts.
struct WindowPlaced {
  std::u16string title;
  int x = 0, y = 0, width = 0, height = 0;
  bool isTopmost = false;
  uint32_t flags = 0;
};
struct FileBoxShown {
  std::u16string filter;  // the name of the first filter
  std::u16string extension = {};
  std::u16string name = {};  // that it begins with
  uint32_t flags = 0;
};
struct FileBoxAnswered { std::u16string path; };  // empty: cancelled
// A message that left the program: to a window of another program, or to all of them (className "*").
struct ForeignMessageSent {
  std::u16string className;
  uint32_t message = 0;
  uint64_t wParam = 0;
  int64_t lParam = 0;
  uint64_t copyDataTag = 0;
  std::vector<uint8_t> payload;
  bool isPosted = false;  // nobody waits for an answer
  uint32_t patience = 0;  // SMTO_..., and the limit, of a wait for the answer that has one
  uint32_t limitMs = 0;
};
// An icon of the notification area. What was not told stays empty; a picture is the number of an icon resource,
// 0 for none.
struct TrayChange {
  enum class Action { kAdded, kChanged, kRemoved };
  Action action = Action::kAdded;
  uint32_t id = 0;
  std::optional<int> picture;
  int pictureSize = 0;  // pixels
  std::optional<std::u16string> tooltip;
  std::optional<TrayBalloon> balloon;
};
// `window` is the class of the window; empty for a timer without one.
struct TimerSet { uint64_t id = 0; uint32_t periodMs = 0; std::u16string window = {}; };
struct TimerKilled { uint64_t id = 0; std::u16string window = {}; };
struct LanguageSet { uint16_t language = 0; bool isLocale = false; };  // of the thread's locale, or its interface
// Where the program looks for libraries that it names without a folder, and whether a bad one raises a box.
struct LibrarySearch { uint32_t errorMode = 0; uint32_t places = 0; bool usesCurrentDirectory = true; };
struct ModuleLoaded { std::u16string path; uint32_t flags = 0; LibrarySearch search; };
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
struct ForegroundSet { std::u16string className; };  // empty: anybody may take it
// Another program, started through the shell.
struct ProgramExecuted {
  std::u16string verb;
  std::u16string file;
  std::u16string parameters;
  std::u16string directory;
  int show = 0;
  uint32_t flags = 0;  // SEE_MASK_...
  uint32_t errorMode = 0;  // that it inherits
};
// Whether a 32-bit program on a 64-bit Windows sees its own system directory in place of the real one.
struct RedirectionSet { bool isOn = true; };
struct ProgramStarted { std::u16string commandLine; };
struct ProgramEnded { int exitCode = 0; };
// clang-format on

using AnyEffect =
    std::variant<DebugOutput, RegistryWrite, RegistryOpened, FileOpened, FileWrite, SerialOpened,
                 SerialPurged, SerialClosed, SerialWrite, MouseInput, KeyInput, ExecutionState, WindowsExit,
                 SessionHeld, Beep, BoxShown, BoxAnswered, DialogShown, DialogHidden, LabelChanged,
                 WindowPlaced, EllipseDrawn, FileBoxShown, FileBoxAnswered, ForeignMessageSent, TimerSet,
                 TimerKilled, LanguageSet, ModuleLoaded, ModuleFreed, DeviceCall, TrayChange, MenuShown,
                 MenuChosen, SoundPlayed, SoundStopped, PlaybackLevel, PlaybackMute, ForegroundSet,
                 ProgramExecuted, RedirectionSet, ProgramStarted, ProgramEnded>;

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

template <class Detail, class Kinds>
inline constexpr bool kIsOneOf = false;
template <class Detail, class... Kinds>
inline constexpr bool kIsOneOf<Detail, std::variant<Kinds...>> = (std::is_same_v<Detail, Kinds> || ...);
template <class Detail>
concept EffectKind = kIsOneOf<Detail, AnyEffect>;

// Whether they have the same fields.
template <EffectKind Detail>
bool operator==(const Detail& a, const Detail& b) {
  return ToJson({Time(0), a}) == ToJson({Time(0), b});
}
// For tests that compare effects.
template <EffectKind Detail>
void PrintTo(const Detail& detail, std::ostream* out) {
  *out << ToJson({Time(0), detail});
}

// All effects of one kind.
template <class Detail>
std::vector<Detail> Select(const std::vector<Effect>& effects) {
  std::vector<Detail> found;
  for (const Effect& effect : effects)
    if (const auto* detail = std::get_if<Detail>(&effect.detail)) found.push_back(*detail);
  return found;
}

}  // namespace pal
