// A damaged resource file: the layer ends with a word, or the tool reads what there is. An input is a row of
// edits of a whole file: at which byte, how many bytes go there, and what comes in their place.
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "fuzz/input.h"
#include "pal/machine/die.h"
#include "pal/machine/machine.h"
#include "system/language.h"
#include "system/system_state.h"
#include "system/windows_version.h"
#include "tests/pal/contract_ids.h"

namespace {
struct End {};
}  // namespace

// In the place of the layer's own: an input ends there, and not the fuzzer.
void pal::Die(std::string_view) {
  throw End();
}

namespace {

using namespace std::chrono_literals;
using Content = std::vector<uint8_t>;

Content ReadWholeFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void Edit(Content& content, fuzz::Input& input) {
  const auto begin = content.begin() + static_cast<ptrdiff_t>(input.Number(2) % (content.size() + 1));
  const auto goes = std::min<ptrdiff_t>(input.Byte(), content.end() - begin);
  const auto piece = input.Piece();
  content.insert(content.erase(begin, begin + goes), piece.begin(), piece.end());
}

void ReadAll() {
  veltra::LoadResString(NEUTRAL_STRING);
  veltra::LoadResString(FIRST_STRING);
  veltra::GetOwnFileVersion();
  if (const veltra::Bytes menu = veltra::FindLocalResource(RT_MENU, CONTRACT_MENU); !menu.empty())
    DestroyMenu(LoadMenuIndirectW(menu.data()));
  if (const veltra::Bytes dialog = veltra::FindLocalResource(RT_DIALOG, CONTRACT_CONTROLS); !dialog.empty())
    DestroyWindow(CreateDialogIndirectParamW(
        GetModuleHandleW(nullptr), reinterpret_cast<LPCDLGTEMPLATEW>(dialog.data()), nullptr,
        [](HWND, UINT, WPARAM, LPARAM) -> INT_PTR { return FALSE; }, 0));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const Content whole = ReadWholeFile(VELTRA_RESOURCES);
  fuzz::Input input(data, size);
  Content content = whole;
  while (!input.AtEnd()) Edit(content, input);

  pal::Machine machine;
  try {
    machine.resources.Load(std::span(content));
  } catch (End) {
    return 0;
  }
  machine.StartProgram([] {
    veltra::SystemState state;
    veltra::recordInUse<veltra::SystemState> = &state;
    try {
      ReadAll();
    } catch (End) {
    }
    return 0;
  });
  machine.clock.Advance(0s);
  if (!machine.ExitCode()) std::abort();
  return 0;
}
