#include "app/app_state.h"

#include "app/folders.h"

namespace veltra {
namespace {

std::shared_ptr<AppState> current;
std::weak_ptr<AppState> last;  // the current one, or one that ended and is still held

}  // namespace

AppState::AppState() : dataFolder(GetDataFolder()), log(dataFolder) {
  SwitchInputMessage = RegisterWindowMessageW(TEXT("Veltra_SwitchInput"));
  Languages = {{TEXT("English"), MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_UK)},
               {TEXT("Nederlands"), MAKELANGID(LANG_DUTCH, SUBLANG_DUTCH)}};
}

AppState& GetAppState() {
  if (const std::shared_ptr<AppState> held = last.lock()) return *held;
  current = std::make_shared<AppState>();
  last = current;
  return *current;
}

bool HasAppState() {
  return current != nullptr;
}

void DestroyAppState() {
  current.reset();
}

std::shared_ptr<AppState> KeepAppState() {
  return current;
}

}  // namespace veltra
