#include "plugins/macro/macro_player.h"

#include <windows.h>

#include <ranges>
#include <span>

namespace macro {
namespace {

using Inputs = std::vector<INPUT>;

void AddKey(Inputs& inputs, const MacroKey& key, bool down) {
  INPUT input = {};
  input.type = INPUT_KEYBOARD;
  input.ki.wVk = key.virtualKey;
  input.ki.wScan = static_cast<WORD>(MapVirtualKeyW(key.virtualKey, MAPVK_VK_TO_VSC));
  input.ki.dwFlags = (down ? 0U : KEYEVENTF_KEYUP) | (key.isExtended ? KEYEVENTF_EXTENDEDKEY : 0U);
  inputs.push_back(input);
}

// The character itself, whatever keyboard the user has.
void AddCharacter(Inputs& inputs, WCHAR character, bool down) {
  INPUT input = {};
  input.type = INPUT_KEYBOARD;
  input.ki.wScan = character;
  input.ki.dwFlags = KEYEVENTF_UNICODE | (down ? 0U : KEYEVENTF_KEYUP);
  inputs.push_back(input);
}

Inputs InputsOf(const MacroStep& step) {
  Inputs inputs;
  for (const WCHAR character : step.text)
    for (const bool down : {true, false}) AddCharacter(inputs, character, down);
  if (step.kind != MacroStep::Kind::kKeys) return inputs;
  const std::span modifiers(step.keys.begin(), step.keys.end() - 1);
  for (const MacroKey& key : modifiers) AddKey(inputs, key, true);
  for (int i = 0; i < step.count; ++i)
    for (const bool down : {true, false}) AddKey(inputs, step.keys.back(), down);
  for (const MacroKey& key : std::views::reverse(modifiers)) AddKey(inputs, key, false);
  return inputs;
}

}  // namespace

void Play(const std::vector<MacroStep>& steps) {
  for (const MacroStep& step : steps) {
    if (step.kind == MacroStep::Kind::kPause) {
      Sleep(static_cast<DWORD>(step.count));
      continue;
    }
    Inputs inputs = InputsOf(step);
    SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT));
  }
}

}  // namespace macro
