// The person at dialogs, message boxes and tray icons. A control is named by its own text, by the label
// before it or by its number: "press OK", "choose "Switch 1" Leftclick", "slide 1123 7".
#include <algorithm>

#include "simulator/console.h"
#include "simulator/controller_commands.h"

namespace simulator {
namespace {

constexpr std::string_view kButton = "Button";
constexpr std::string_view kLabel = "Static";

std::string_view WithoutColon(std::string_view text) {
  return text.ends_with(':') ? text.substr(0, text.size() - 1) : text;
}

bool IsNamed(const ControlLook& control, std::string_view name) {
  return control.isShown && WithoutColon(control.text) == WithoutColon(name);
}

using Controls = std::span<const ControlLook>;

// What follows the label; everything when it is empty.
Controls Behind(Controls controls, std::string_view label) {
  if (label.empty()) return controls;
  const auto found = std::ranges::find_if(controls, [&](const ControlLook& control) {
    return control.kind == kLabel && IsNamed(control, label);
  });
  return controls.subspan(static_cast<size_t>(found - controls.begin()));
}

// The controls of that kind that stand after the label, until the next label after one of them.
std::vector<const ControlLook*> LabelledWith(Controls controls, std::string_view label,
                                             std::string_view kind) {
  std::vector<const ControlLook*> found;
  Controls rest = Behind(controls, label);
  if (!rest.empty()) rest = rest.subspan(1);
  for (const ControlLook& control : rest) {
    if (!control.isShown) continue;
    if (control.kind == kLabel && !found.empty()) break;
    if (kind.empty() || control.kind == kind) found.push_back(&control);
  }
  return found;
}

// What the name may mean, the likeliest first; an empty kind is any.
std::vector<const ControlLook*> FindControls(Controls controls, std::string_view name,
                                             std::string_view kind) {
  std::vector<const ControlLook*> found;
  const std::optional<int64_t> id = ParseNumber(name);
  for (const ControlLook& control : controls) {
    if (!kind.empty() && control.kind != kind) continue;
    const bool isNamed = control.kind != kLabel && IsNamed(control, name);
    if (id ? control.id == *id : isNamed) found.push_back(&control);
  }
  return found.empty() ? LabelledWith(controls, name, kind) : found;
}

Problem NoSuchControl(const DialogLook& dialog, std::string_view name) {
  std::string problem = "the dialog \"" + dialog.title + "\" has no such control: " + std::string(name);
  for (const ControlLook& control : dialog.controls)
    if (control.isShown && !control.text.empty()) problem += "\n  " + control.text;
  return problem;
}

// Acts on the first control that the name may mean and that fits, as soon as there is one.
Problem UseControl(Console& console, std::string_view name, std::string_view kind,
                   const std::function<bool(const ControlLook&)>& fits,
                   const std::function<void(const ControlLook&)>& act) {
  return Eventually(console, [&]() -> Problem {
    const std::optional<DialogLook> dialog = console.TheWorld().FrontDialog();
    if (!dialog) return "no dialog is shown";
    for (const ControlLook* control : FindControls(dialog->controls, name, kind)) {
      if (!fits(*control)) continue;
      if (!control->isShown || !control->isEnabled) return "it is hidden or disabled";
      act(*control);
      return {};
    }
    return NoSuchControl(*dialog, name);
  });
}

bool Any(const ControlLook&) {
  return true;
}

// "press Speakers On": the button of that text after that label.
Problem RunPress(Console& console, Words words) {
  if (words.size() != 2 && words.size() != 3) return ExpectedArguments("[LABEL] BUTTON");
  World& world = console.TheWorld();
  if (words.size() == 2)
    return UseControl(console, words[1], kButton, Any,
                      [&](const ControlLook& button) { world.Press(button.id); });
  return UseControl(
      console, words[1], kButton, [&](const ControlLook& button) { return IsNamed(button, words[2]); },
      [&](const ControlLook& button) { world.Press(button.id); });
}

Problem RunDoubleClick(Console& console, Words words) {
  if (words.size() != 2) return ExpectedArguments("CONTROL");
  return UseControl(console, words[1], "", Any,
                    [&](const ControlLook& control) { console.TheWorld().DoubleClick(control.id); });
}

// An entry by its name.
bool HasEntry(Console& console, const ControlLook& list, std::string_view text) {
  return std::ranges::any_of(console.TheWorld().Entries(list.id), [&](std::string_view entry) {
    return entry.substr(0, entry.rfind('=')) == text;
  });
}

// By its name, or by name and value.
bool Holds(Console& console, const ControlLook& list, const std::string& text) {
  const std::vector<std::string> entries = console.TheWorld().Entries(list.id);
  return HasEntry(console, list, text) || std::ranges::find(entries, text) != entries.end();
}

Problem RunChoose(Console& console, Words words) {
  if (words.size() != 3) return ExpectedArguments("LIST ENTRY");
  return UseControl(
      console, words[1], "ComboBox",
      [&](const ControlLook& list) { return HasEntry(console, list, words[2]); },
      [&](const ControlLook& list) { console.TheWorld().Choose(list.id, words[2]); });
}

Problem RunSlide(Console& console, Words words) {
  const std::optional<int64_t> position = words.size() == 3 ? ParseNumber(words[2]) : std::nullopt;
  if (!position) return ExpectedArguments("SLIDER POSITION");
  return UseControl(console, words[1], "msctls_trackbar32", Any, [&](const ControlLook& slider) {
    console.TheWorld().Slide(slider.id, static_cast<int>(*position));
  });
}

Problem RunType(Console& console, Words words) {
  if (words.size() != 3) return ExpectedArguments("FIELD TEXT");
  return UseControl(console, words[1], "Edit", Any,
                    [&](const ControlLook& field) { console.TheWorld().Type(field.id, words[2]); });
}

Problem RunKey(Console& console, Words words) {
  struct Row {
    std::string_view name;
    int virtualKey;
  };
  constexpr Row kKeys[] = {{"enter", 0x0D}, {"escape", 0x1B}, {"tab", 0x09}, {"space", 0x20}, {"end", 0x23},
                           {"home", 0x24},  {"left", 0x25},   {"up", 0x26},  {"right", 0x27}, {"down", 0x28}};
  const std::string_view name = words.size() == 2 ? std::string_view(words[1]) : std::string_view();
  const auto* row = std::ranges::find(kKeys, name, &Row::name);
  const std::optional<int64_t> key = row == std::end(kKeys) ? ParseNumber(name) : row->virtualKey;
  if (!key || *key < 1 || *key > 0xFE) return ExpectedArguments("enter|escape|tab|space|up|...|NUMBER");
  return Eventually(console, [&] { return console.TheWorld().PressKey(static_cast<int>(*key)); });
}

Problem RunCloseDialog(Console& console, Words) {
  return Eventually(console, [&] { return console.TheWorld().CloseDialog(); });
}

Problem RunPickFile(Console& console, Words words) {
  if (words.size() != 2) return ExpectedArguments("FILE|nothing");
  const std::string_view path = words[1] == "nothing" ? std::string_view() : std::string_view(words[1]);
  return Eventually(console, [&] { return console.TheWorld().PickFile(path); });
}

Problem RunMenu(Console& console, Words words) {
  if (words.size() < 2) return ExpectedArguments("ITEM|nothing");
  const std::string item = JoinWords(words.subspan(1));
  return console.TheWorld().ChooseMenuItem(item == "nothing" ? std::string_view() : std::string_view(item));
}

Problem RunTray(Console& console, Words words) {
  struct Row {
    std::string_view word;
    MouseAction action;
  };
  constexpr Row kActions[] = {{"click", MouseAction::kClick},
                              {"double-click", MouseAction::kDoubleClick},
                              {"menu", MouseAction::kRightClick}};
  const auto* row = words.size() < 3 ? std::end(kActions)
                                     : std::ranges::find(kActions, std::string_view(words[2]), &Row::word);
  const bool isPower = words.size() > 1 && words[1] == "power";
  const bool choosesItem = words.size() > 3;
  if (row == std::end(kActions) || (!isPower && words[1] != "tool") ||
      (choosesItem && row->action != MouseAction::kRightClick))
    return ExpectedArguments("power|tool click|double-click|menu [ITEM]");
  const TrayIcon icon = isPower ? TrayIcon::kPower : TrayIcon::kTool;
  const Problem problem =
      Eventually(console, [&] { return console.TheWorld().UseTrayIcon(icon, row->action); });
  return problem || !choosesItem ? problem : RunMenu(console, words.subspan(2));
}

std::string StateOf(const ControlLook& control) {
  std::string state = std::to_string(control.id) + " " + control.kind + (control.isShown ? "" : ", hidden") +
                      (control.isEnabled ? "" : ", disabled") + (control.isChecked ? ", checked" : "");
  if (control.kind.starts_with("msctls")) state += ", at " + std::to_string(control.position);
  return control.text.empty() ? state : state + ", text " + control.text;
}

Problem RunDialog(Console& console, Words) {
  const std::optional<DialogLook> dialog = console.TheWorld().FrontDialog();
  if (!dialog) return "no dialog is shown";
  console.Out() << "           " << dialog->title << "\n";
  for (const ControlLook& control : dialog->controls) {
    console.Out() << "           " << StateOf(control) << "\n";
    if (control.kind != "ComboBox") continue;
    for (const std::string& entry : console.TheWorld().Entries(control.id))
      console.Out() << "             " << entry << "\n";
  }
  return {};
}

constexpr ConsoleCommand kDialogCommands[] = {
    {"press", "[LABEL] BUTTON",
     "press a button or check box, named by its text or number, or the one after that label", true, RunPress},
    {"double-click", "CONTROL", "double-click a control", true, RunDoubleClick},
    {"choose", "LIST ENTRY", "choose in a drop-down list, named by its label or number", true, RunChoose},
    {"slide", "SLIDER POSITION", "drag a slider to that position", true, RunSlide},
    {"type", "FIELD TEXT", "replace what the field holds", true, RunType},
    {"key", "enter|escape|tab|...|NUMBER", "press a key in the dialog", true, RunKey},
    {"close-dialog", "", "close the dialog by its close box", true, RunCloseDialog},
    {"pick-file", "FILE|nothing", "choose a file in Windows' box, or cancel it", true, RunPickFile},
    {"tray", "power|tool click|double-click|menu [ITEM]", "use a tray icon; choose from its menu", true,
     RunTray},
    {"menu", "ITEM|nothing", "choose in the menu that is open, or close it", true, RunMenu},
    {"dialog", "", "print the front dialog with its controls", false, RunDialog},
};

bool Holds(const DialogLook& dialog, std::string_view text) {
  return dialog.title.find(text) != std::string::npos ||
         std::ranges::any_of(dialog.controls, [&](const ControlLook& control) {
           return control.isShown && control.text.find(text) != std::string::npos;
         });
}

}  // namespace

std::span<const ConsoleCommand> DialogCommands() {
  return kDialogCommands;
}

Problem CheckShown(Console& console, Words arguments, bool wanted, bool boxes) {
  const std::string text = JoinWords(arguments);
  std::vector<DialogLook> dialogs = console.TheWorld().Dialogs();
  std::erase_if(dialogs, [&](const DialogLook& dialog) { return dialog.isBox != boxes; });
  const auto holds = [&](const DialogLook& dialog) { return Holds(dialog, text); };
  if (std::ranges::any_of(dialogs, holds) == wanted) return {};
  std::string problem = dialogs.empty() ? "none is shown" : "shown:";
  for (const DialogLook& dialog : dialogs) {
    problem += "\n  " + dialog.title;
    for (const ControlLook& control : dialog.controls)
      if (control.isShown && !control.text.empty()) problem += "\n    " + control.text;
  }
  return problem;
}

Problem CheckControl(Console& console, Words arguments, bool wanted) {
  constexpr std::string_view kArguments =
      "control NAME shown|hidden|enabled|disabled|checked|unchecked, or text TEXT, at POSITION, has ENTRY";
  struct Row {
    std::string_view word;
    bool takesValue;
    bool (*holds)(const ControlLook& control, const std::string& value);
  };
  constexpr Row kStates[] = {
      {"shown", false, [](const ControlLook& c, const std::string&) { return c.isShown; }},
      {"hidden", false, [](const ControlLook& c, const std::string&) { return !c.isShown; }},
      {"enabled", false, [](const ControlLook& c, const std::string&) { return c.isEnabled; }},
      {"disabled", false, [](const ControlLook& c, const std::string&) { return !c.isEnabled; }},
      {"checked", false, [](const ControlLook& c, const std::string&) { return c.isChecked; }},
      {"unchecked", false, [](const ControlLook& c, const std::string&) { return !c.isChecked; }},
      {"text", true, [](const ControlLook& c, const std::string& value) { return c.text == value; }},
      {"at", true,
       [](const ControlLook& c, const std::string& value) { return c.position == ParseNumber(value); }},
      {"has", true, nullptr},
  };
  const auto* state = arguments.size() < 2
                          ? std::end(kStates)
                          : std::ranges::find(kStates, std::string_view(arguments[1]), &Row::word);
  if (state == std::end(kStates) || arguments.size() > (state->takesValue ? 3U : 2U))
    return ExpectedArguments(kArguments);
  const std::optional<DialogLook> dialog = console.TheWorld().FrontDialog();
  if (!dialog) return "no dialog is shown";
  const auto controls = FindControls(dialog->controls, arguments[0], "");
  if (controls.empty()) return NoSuchControl(*dialog, arguments[0]);
  const std::string value = arguments.size() == 3 ? arguments[2] : std::string();
  const bool holds =
      state->holds ? state->holds(*controls.front(), value) : Holds(console, *controls.front(), value);
  if (holds == wanted) return {};
  return "it is " + StateOf(*controls.front());
}

}  // namespace simulator
