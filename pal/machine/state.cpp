#include "pal/machine/state.h"

#include <algorithm>

namespace pal {
namespace {

std::atomic<State*> currentState{nullptr};
thread_local DWORD lastError = ERROR_SUCCESS;

}  // namespace

State::State(Clock kind)
    : scheduler(kind, mutex,
                {[this](Thread& thread) { ReleaseThread(thread); },
                 [this](int exitCode) {
                   ReleaseProgram();
                   Emit(ProgramEnded{exitCode});
                 }}) {
  State* none = nullptr;
  if (!currentState.compare_exchange_strong(none, this)) Die("a second machine at the same time");
}

State::~State() {
  currentState = nullptr;
}

void State::Emit(EffectDetail detail) {
  const Effect& effect = effects.emplace_back(Effect{scheduler.Now(), std::move(detail)});
  if (effectListener) effectListener(effect);
  scheduler.NotifyOutside();
}

void State::ReleaseThread(Thread& thread) {
  for (const HWND window : desktop.OfThread(thread)) desktop.Remove(window);
  std::erase_if(boxes.open, [&](const auto& box) { return !desktop.Find(box->window); });
  thread.queue.Clear();
  scheduler.Notify();
}

void State::ReleaseProgram() {
  handles.CloseAll();
  desktop.ForgetProgram();
  menus.Clear();
  pictures.Clear();
  comObjects.clear();
  modules.search = {};
  dialogs = {};
  drawing = {};
  power = {};
}

DWORD LastError() {
  return lastError;
}

void SetLastError(DWORD error) {
  lastError = error;
}

State& CurrentState() {
  State* state = currentState.load(std::memory_order_acquire);
  if (!state) Die("a call of the Windows API without a machine");
  return *state;
}

}  // namespace pal
