#include "tests/storm/weather.h"

#include <algorithm>
#include <charconv>

namespace storm {
namespace {

// {a|b} is one of them, {1..9} a number, # the number of the act.
struct Act {
  size_t weight;
  std::string_view lines;
};
constexpr Act kActs[] = {
    {60, "tap {sw1|sw2|esc|fn1|fn2} {1..900}ms"},
    {8, "tap {sw1|sw2|esc|fn1|fn2} {1700..4000}ms"},
    {30, "{sw1|sw2|esc|fn1|fn2} press"},
    {30, "{sw1|sw2|esc|fn1|fn2} release"},
    {40, "wait {1..300}ms"},
    {20, "wait {1..40}s"},
    {3, "wait {60..900}s"},

    {8, "fault {flip|drop|double|garbage} {1..3}"},
    {4, "fault {mute|empty|twice|again} {1..2}"},
    {3, "raw {00|55|05|04|55 55 0A 53|FF 13 04|55 55 0B 04|55 55 0A 53 77 31}"},
    {2, "text {Ready|Firmware=113|Serial=SV5-1|BatteryState=0x10|Nonsense}"},
    {3, "log note #"},
    {3, "reply-delay {1|2|40|300|700}ms"},
    {2, "controller-power off;wait {1..9000}ms;controller-power on"},

    {2, "port remove;wait {1..90}s;port arrive;wait 20ms"},
    {2, "port vanish;wait {1..90}s;port return;wait 20ms"},
    {1, "port {arrive|remove|vanish|return};wait {20..900}ms"},
    {1, "port {arrive|remove} COM{2|7};wait 20ms"},
    {1, "fail {CreateFileW|SetCommState|CreateThread|CreateEventW} {1..4}"},
    {1, "fail {RegSetValueExW|RegCreateKeyExW|RegOpenKeyExW|WritePrivateProfileSectionW|CopyFileW} {1..9}"},
    {1, "fail {CoCreateInstance|GetDefaultAudioEndpoint|SetMasterVolumeLevelScalar|PlaySoundW} {1..4}"},
    {1, "board codec-errors {1..40}"},

    {2, "suspend;wait {1..900}s;resume"},
    {1, "{suspend|resume}"},
    {1, "screen {lock|cover};wait {1..60}s;screen {unlock|uncover}"},
    {1, "shell {stop|start|restart|announce}"},
    {2, "battery {0..100}"},
    {1, "adapter {on|off}"},

    {3, "app {open|close} \"{Talk Builder|Lexora|Talk Builder 4 Class|PageVoice|Wendle}\""},
    {1, "app {hang|wake} \"{Talk Builder|Lexora|Talk Builder 4 Class}\""},
    {4, "app open \"Talk Builder 4 Class\";send-data {0|1} \"Ask #\" from \"Talk Builder 4 Class\""},
    {3, "send-data {0|1} \"Ask #\""},
    {1, "send-data 3 \"Stop\""},
    {2, "send-data {12344..12351} \"Value\""},
    {2, "led {0..5}"},
    {3, "fault {twice|empty|flip};led 1;led 2;led 3"},
    {2, "request {0..18} {0..100}"},
    {1, "request 20;ask-report {0|1};ask-firmware"},

    {2, "tray {tool|power} {click|double-click}"},
    {2, "key {escape|enter|tab|space|up|down}"},
    {1, "answer {ok|yes|no}"},
    {1, "press OK"},
    {1,
     "firmware-file #.hex 0x{1800|2000|AA00} 0x{1900|12700|14700};fault "
     "{flip|mute|drop|power|empty|again|address|stuck-bit} at "
     "{1..8};update #.hex;wait {1..30}s"},
    {1, "firmware-file #.hex 0x{1800|2000|AA00};update #.hex"},
    {1, "{quit|quit no|close|end-session};wait {1..9}s;start -s"},
    {3, "start -s"},
};

// One of several, or a number between two.
std::string Choose(std::string_view choices, Dice& dice) {
  const size_t dots = choices.find("..");
  if (dots != choices.npos) {
    size_t low = 0;
    size_t high = 0;
    std::from_chars(choices.data(), choices.data() + dots, low);
    std::from_chars(choices.data() + dots + 2, choices.data() + choices.size(), high);
    return std::to_string(low + dice.Below(high - low + 1));
  }
  size_t which = dice.Below(static_cast<size_t>(std::ranges::count(choices, '|')) + 1);
  for (; which > 0; --which) choices.remove_prefix(choices.find('|') + 1);
  return std::string(choices.substr(0, choices.find('|')));
}

std::string Fill(std::string_view lines, Dice& dice) {
  static int number = 0;
  ++number;
  std::string filled;
  while (!lines.empty()) {
    const char c = lines.front();
    const size_t end = c == '{' ? lines.find('}') : 0;
    if (c == '#')
      filled += std::to_string(number);
    else if (c == '{')
      filled += Choose(lines.substr(1, end - 1), dice);
    else
      filled += c;
    lines.remove_prefix(end + 1);
  }
  return filled;
}

}  // namespace

size_t Dice::Below(size_t count) {
  state_ = state_ * 6364136223846793005 + 1442695040888963407;
  return static_cast<size_t>((state_ >> 33) % count);
}

std::string SetUp(Dice& dice) {
  return Fill(
      "set StartupDelay 0;set Sw1CmdVal {-1|32|0};set Sw2CmdVal {-2|50002|0};action fn1-short 1 0x70;"
      "action fn2-short 1 0x71;action fn1-long 1 0x72;action fn2-long 1 0x73;pace {on|off|off|off};"
      "start -s;wait 16s",
      dice);
}

std::string Gust(Dice& dice) {
  size_t total = 0;
  for (const Act& act : kActs) total += act.weight;
  size_t at = dice.Below(total);
  const Act* act = kActs;
  for (; at >= act->weight; ++act) at -= act->weight;
  return Fill(act->lines, dice);
}

const std::string_view kCalm =
    "fault off;fail off;board codec-errors 0;reply-delay 2ms;shell start;app wake \"Talk Builder\";"
    "app wake \"Lexora\";app wake \"Talk Builder 4 Class\";app close \"Talk Builder\";app close \"Lexora\";"
    "wait 20s;screen uncover;screen unlock;resume;controller-power off;controller-power on;port return;"
    "port arrive;wait 40s;sw1 release;sw2 release;esc release;fn1 release;fn2 release;wait 16s;"
    "# leave the dialogs";

}  // namespace storm
