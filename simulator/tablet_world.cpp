#include "simulator/tablet_world.h"

#include <algorithm>

#include "pal/machine/person.h"
#include "pal/text/unicode.h"

namespace simulator {
namespace {

std::u16string Wide(std::string_view utf8) {
  return pal::DecodeUtf8(utf8).text;
}

// On one line, without the marks of access keys.
std::string Shown(std::u16string_view text) {
  std::string shown = pal::ToUtf8(text);
  std::erase(shown, '\r');
  std::erase(shown, '&');
  std::ranges::replace(shown, '\n', ' ');
  return shown;
}

// Effects that a person at the tablet, or beside it, would notice. The others are the tool's own
// housekeeping.
// clang-format off
template <class Detail>
constexpr bool kNoticed =
    std::is_same_v<Detail, pal::SerialOpened> ||
    std::is_same_v<Detail, pal::SerialClosed> ||
    std::is_same_v<Detail, pal::MouseInput> ||
    std::is_same_v<Detail, pal::KeyInput> ||
    std::is_same_v<Detail, pal::ExecutionState> ||
    std::is_same_v<Detail, pal::WindowsExit> ||
    std::is_same_v<Detail, pal::SessionHeld> ||
    std::is_same_v<Detail, pal::Beep> ||
    std::is_same_v<Detail, pal::BoxShown> ||
    std::is_same_v<Detail, pal::BoxAnswered> ||
    std::is_same_v<Detail, pal::DialogShown> ||
    std::is_same_v<Detail, pal::DialogHidden> ||
    std::is_same_v<Detail, pal::LabelChanged> ||
    std::is_same_v<Detail, pal::FileBoxShown> ||
    std::is_same_v<Detail, pal::FileBoxAnswered> ||
    std::is_same_v<Detail, pal::ForeignMessageSent> ||
    std::is_same_v<Detail, pal::DeviceCall> ||
    std::is_same_v<Detail, pal::TrayChange> ||
    std::is_same_v<Detail, pal::MenuShown> ||
    std::is_same_v<Detail, pal::MenuChosen> ||
    std::is_same_v<Detail, pal::SoundPlayed> ||
    std::is_same_v<Detail, pal::PlaybackLevel> ||
    std::is_same_v<Detail, pal::ProgramExecuted> ||
    std::is_same_v<Detail, pal::ProgramStarted> ||
    std::is_same_v<Detail, pal::ProgramEnded>;
// clang-format on

bool IsNoticed(const pal::Effect& effect) {
  constexpr std::string_view kBus = "i2c";  // hundreds of transfers at every start
  const auto* call = std::get_if<pal::DeviceCall>(&effect.detail);
  if (call && call->device == kBus) return false;
  return std::visit([](const auto& detail) { return kNoticed<std::decay_t<decltype(detail)>>; },
                    effect.detail);
}

DialogLook LookAt(const pal::DialogView& view) {
  DialogLook look{.title = Shown(view.title), .controls = {}};
  for (const pal::ControlView& control : view.controls)
    look.controls.push_back({control.id, Ascii(control.windowClass), Shown(control.text), control.isVisible,
                             control.isEnabled, control.isChecked, control.position});
  return look;
}

struct BoxButton {
  UINT type;  // of the box
  int id;
  const char* text;
};
constexpr BoxButton kBoxButtons[] = {
    {MB_OK, IDOK, "OK"},
    {MB_OKCANCEL, IDOK, "OK"},
    {MB_OKCANCEL, IDCANCEL, "Cancel"},
    {MB_YESNO, IDYES, "Yes"},
    {MB_YESNO, IDNO, "No"},
    {MB_YESNOCANCEL, IDYES, "Yes"},
    {MB_YESNOCANCEL, IDNO, "No"},
    {MB_YESNOCANCEL, IDCANCEL, "Cancel"},
};

DialogLook LookAt(const pal::OpenMessageBox& box) {
  constexpr UINT kTypeMask = 0xF;
  DialogLook look{.title = Shown(box.caption), .isBox = true, .controls = {}};
  look.controls.push_back({-1, "Static", Shown(box.text), true, true, false, 0});
  for (const BoxButton& button : kBoxButtons)
    if (button.type == (box.type & kTypeMask))
      look.controls.push_back({button.id, "Button", button.text, true, true, false, 0});
  return look;
}

}  // namespace

void TabletWorld::OnEntry(std::function<void(TimelineEntry entry, bool noticed)> listener) {
  if (!listener) return tablet_.Machine().OnEffect({});
  tablet_.Machine().OnEffect([listener = std::move(listener)](const pal::Effect& effect) {
    listener({effect.at, "effect", pal::Describe(effect)}, IsNoticed(effect));
  });
}

bool TabletWorld::WaitUntil(const std::function<bool()>& condition, Duration limit) {
  return tablet_.Machine().clock.AdvanceUntil(condition, limit);
}

void TabletWorld::Start(std::string_view arguments) {
  tablet_.Start(Wide(arguments));
}

std::optional<int64_t> TabletWorld::Ask(uint32_t message, int64_t wParam, int64_t lParam) {
  return tablet_.Ask(message, static_cast<WPARAM>(wParam), static_cast<LPARAM>(lParam));
}

bool TabletWorld::Post(uint32_t message, int64_t wParam, int64_t lParam) {
  return tablet_.Machine().desktop.Post(tablet_.MainWindow(), message, static_cast<WPARAM>(wParam),
                                        static_cast<LPARAM>(lParam));
}

std::optional<int64_t> TabletWorld::SendData(std::string_view sender, uint64_t tag,
                                             std::string_view payload) {
  const HWND window = sender.empty() ? nullptr : tablet_.TheDesk().Find(sender);
  return tablet_.SendData(window, tag, {reinterpret_cast<const uint8_t*>(payload.data()), payload.size()});
}

std::optional<std::string> TabletWorld::AskReport(int64_t selection) {
  pal::Machine& machine = tablet_.Machine();
  std::u16string report;
  const HWND asker =
      machine.desktop.AddForeignWindow(u"Asker", [&report](const pal::ForeignMessage& message) -> LRESULT {
        if (message.message == WM_COPYDATA)
          report.assign(reinterpret_cast<const char16_t*>(message.payload.data()),
                        message.payload.size() / 2);
        return TRUE;
      });
  machine.desktop.SetHung(asker, true, true);
  const auto answer = Ask(kDeviceReportRequest, selection, reinterpret_cast<intptr_t>(asker));
  machine.desktop.RemoveForeignWindow(asker);
  if (!answer) return std::nullopt;
  return pal::ToUtf8(report.substr(0, report.find(u'\0')));
}

std::optional<int64_t> TabletWorld::AnnouncePort(bool arrived, std::string_view name) {
  return tablet_.NotifyPort(arrived, Wide(name));
}

std::optional<int64_t> TabletWorld::PlugPort(bool plugged) {
  LosePort(!plugged);
  return AnnouncePort(plugged, "COM" + std::to_string(SimulatedTablet::kControllerPort));
}

Problem TabletWorld::LosePort(bool lost) {
  if (lost)
    tablet_.VanishPort();
  else
    tablet_.ReturnPort();
  return {};
}

// ---- registry and disk
// --------------------------------------------------------------------------------------

namespace {

HKEY KeyOf(Root root) {
  return root == Root::kUser ? HKEY_CURRENT_USER : HKEY_LOCAL_MACHINE;
}

}  // namespace

void TabletWorld::SetNumber(Root root, std::string_view name, int64_t value) {
  tablet_.Machine().registry.SetDword(KeyOf(root), SimulatedTablet::kUserKey, Wide(name),
                                      static_cast<uint32_t>(value));
}

void TabletWorld::SetText(Root root, std::string_view name, std::string_view text) {
  const std::u16string wide = Wide(text);
  tablet_.Machine().registry.Set(
      KeyOf(root), SimulatedTablet::kUserKey, Wide(name), REG_SZ,
      {reinterpret_cast<const uint8_t*>(wide.c_str()), (wide.size() + 1) * sizeof(char16_t)});
}

std::vector<Setting> TabletWorld::Settings() {
  const pal::Machine& machine = tablet_.Machine();
  std::vector<Setting> settings;
  for (const std::u16string& name :
       machine.registry.ValueNames(HKEY_CURRENT_USER, SimulatedTablet::kUserKey)) {
    const auto value = machine.registry.Dword(HKEY_CURRENT_USER, SimulatedTablet::kUserKey, name);
    Setting& setting = settings.emplace_back(Setting{Ascii(name), std::nullopt});
    if (value) setting.number = static_cast<int32_t>(*value);
  }
  return settings;
}

std::optional<std::string> TabletWorld::ReadFile(std::string_view path) {
  return tablet_.Machine().disk.Read(Wide(path));
}

void TabletWorld::WriteFile(std::string_view path, std::string_view content) {
  tablet_.Machine().disk.Write(Wide(path), content);
}

// ---- other programs
// -----------------------------------------------------------------------------------------

void TabletWorld::OpenApplication(std::string_view windowClass) {
  tablet_.TheDesk().Open(windowClass);
}

bool TabletWorld::CloseApplication(std::string_view windowClass) {
  return tablet_.TheDesk().Close(windowClass);
}

bool TabletWorld::IsApplicationOpen(std::string_view windowClass) {
  return tablet_.TheDesk().Find(windowClass) != nullptr;
}

Problem TabletWorld::HangApplication(std::string_view windowClass, bool hangs) {
  const HWND window = tablet_.TheDesk().Find(windowClass);
  if (!window) return "that application is not open";
  tablet_.Machine().desktop.SetHung(window, hangs);
  return {};
}

void TabletWorld::PlayOtherCopy() {
  tablet_.Machine().system.AddForeignMutex(SimulatedTablet::kMainWindowClass);
  tablet_.TheDesk().Open(kMainWindow);
}

// ---- the person
// ----------------------------------------------------------------------------------------------

std::vector<DialogLook> TabletWorld::Dialogs() {
  std::vector<DialogLook> dialogs;
  std::vector<pal::OpenMessageBox> boxes = tablet_.Machine().boxes.Shown();
  std::ranges::reverse(boxes);
  for (const pal::OpenMessageBox& box : boxes) dialogs.push_back(LookAt(box));
  if (const auto dialog = pal::person::FrontDialog()) dialogs.push_back(LookAt(*dialog));
  return dialogs;
}

std::optional<DialogLook> TabletWorld::FrontDialog() {
  std::vector<DialogLook> dialogs = Dialogs();
  if (dialogs.empty()) return std::nullopt;
  return std::move(dialogs.front());
}

std::vector<std::string> TabletWorld::Entries(int id) {
  std::vector<std::string> entries;
  for (const pal::ListEntry& entry : pal::person::Look(id).entries)
    entries.push_back(Shown(entry.text) + "=" + std::to_string(entry.data));
  return entries;
}

void TabletWorld::Press(int id) {
  if (tablet_.Machine().boxes.Shown().empty())
    pal::person::Press(id);
  else
    tablet_.Machine().boxes.Answer(id);
}

void TabletWorld::DoubleClick(int id) {
  pal::person::DoubleClick(id);
}
void TabletWorld::Choose(int id, std::string_view entry) {
  pal::person::Choose(id, Wide(entry));
}
void TabletWorld::Slide(int id, int position) {
  pal::person::Drag(id, position);
}
void TabletWorld::Type(int id, std::string_view text) {
  pal::person::Type(id, Wide(text));
}

Problem TabletWorld::PressKey(int virtualKey) {
  if (!pal::person::FrontDialog()) return "no dialog is shown";
  pal::person::PressKey(virtualKey);
  return {};
}

Problem TabletWorld::CloseDialog() {
  if (!pal::person::FrontDialog()) return "no dialog is shown";
  pal::person::CloseDialog();
  return {};
}

Problem TabletWorld::PickFile(std::string_view path) {
  if (pal::person::OpenFileBoxes().empty()) return "no box asks for a file";
  pal::person::AnswerFileBox(path.empty() ? std::nullopt : std::optional(Wide(path)));
  return {};
}

Problem TabletWorld::UseTrayIcon(TrayIcon icon, MouseAction action) {
  pal::Machine& machine = tablet_.Machine();
  const auto id = static_cast<UINT>(icon);
  const bool there = action == MouseAction::kClick         ? machine.tray.Click(id)
                     : action == MouseAction::kDoubleClick ? machine.tray.DoubleClick(id)
                                                           : machine.tray.RightClick(id);
  if (!there) return "the icon is not there";
  return {};
}

Problem TabletWorld::ChooseMenuItem(std::string_view label) {
  pal::Machine& machine = tablet_.Machine();
  if (!WaitUntil([&machine] { return machine.menus.Shown().has_value(); }, kPatience))
    return "no menu is open";
  if (label.empty()) {
    machine.menus.Dismiss();
    return {};
  }
  return machine.menus.Choose(Wide(label)) ? Problem() : "the menu has no such item";
}

}  // namespace simulator
