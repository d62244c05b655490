#include "pal/windows/desktop.h"

#include <algorithm>

namespace pal {
namespace {

// Numbers of registered messages.
constexpr UINT kFirstRegistered = 0xC000;
constexpr size_t kMostRegistered = 0x4000;

char16_t Lower(char16_t unit) {
  return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + (u'a' - u'A')) : unit;
}

template <class Predicate>
std::vector<HWND> Select(const std::map<HWND, Window>& windows, Predicate predicate) {
  std::vector<HWND> selected;
  for (const auto& [handle, window] : windows)
    if (predicate(window)) selected.push_back(handle);
  return selected;
}

}  // namespace

bool SameName(std::u16string_view a, std::u16string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char16_t x, char16_t y) { return Lower(x) == Lower(y); });
}

Desktop::Desktop(State& state) : state_(state) {
  Window desktop;
  desktop.windowClass = std::make_shared<const WindowClass>(WindowClass{u"#32769", nullptr, 0, {}});
  desktop.rect = {0, 0, 1024, 768};
  desktop.isDesktop = true;
  desktopWindow_ = Add(std::move(desktop)).handle;
}

bool Desktop::AddClass(WindowClass windowClass) {
  if (FindClass(windowClass.name.c_str())) return false;
  classes_.push_back(std::make_shared<const WindowClass>(std::move(windowClass)));
  return true;
}

std::shared_ptr<const WindowClass> Desktop::FindClass(const WCHAR* name) const {
  if (auto ofWindows = FindSystemClass(name)) return ofWindows;
  const auto found =
      std::ranges::find_if(classes_, [&](const auto& one) { return SameName(one->name, name); });
  return found == classes_.end() ? nullptr : *found;
}

Window& Desktop::Add(Window window) {
  window.handle = reinterpret_cast<HWND>(lastHandle_ += 2);
  return windows_.emplace(window.handle, std::move(window)).first->second;
}

Window* Desktop::Find(HWND handle) {
  const auto found = windows_.find(handle);
  return found == windows_.end() ? nullptr : &found->second;
}

std::u16string Desktop::ClassOf(HWND handle) const {
  const auto found = windows_.find(handle);
  return found == windows_.end() ? std::u16string() : found->second.windowClass->name;
}

void Desktop::Remove(HWND handle) {
  windows_.erase(handle);
  if (focus_ == handle) focus_ = nullptr;
}

std::vector<HWND> Desktop::TopLevel() const {
  std::vector<HWND> windows = Select(windows_, [](const Window& window) { return window.IsTopLevel(); });
  std::reverse(windows.begin(), windows.end());
  return windows;
}

std::vector<HWND> Desktop::Children(HWND parent) const {
  return Select(windows_, [&](const Window& window) { return window.parent == parent; });
}

std::vector<HWND> Desktop::Owned(HWND owner) const {
  return Select(windows_, [&](const Window& window) { return window.owner == owner; });
}

std::vector<HWND> Desktop::OfThread(const Thread& thread) const {
  return Select(windows_, [&](const Window& window) { return window.thread == &thread; });
}

std::vector<HWND> Desktop::WithDescendants(HWND window) const {
  std::vector<HWND> all = {window};
  for (size_t index = 0; index < all.size(); ++index) {
    const std::vector<HWND> children = Children(all[index]);
    all.insert(all.end(), children.begin(), children.end());
  }
  return all;
}

RECT Desktop::ScreenRect(const Window& window) const {
  RECT rect = window.rect;
  for (auto outer = windows_.find(window.parent); outer != windows_.end();
       outer = windows_.find(outer->second.parent)) {
    rect.left += outer->second.rect.left;
    rect.right += outer->second.rect.left;
    rect.top += outer->second.rect.top;
    rect.bottom += outer->second.rect.top;
  }
  return rect;
}

bool Desktop::IsShown(HWND window) const {
  auto found = windows_.find(window);
  if (found == windows_.end()) return false;
  for (; found != windows_.end(); found = windows_.find(found->second.parent))
    if (!(found->second.style & WS_VISIBLE)) return false;
  return true;
}

int Desktop::CountOfProgram() const {
  return static_cast<int>(
      Select(windows_, [](const Window& window) { return window.thread != nullptr; }).size());
}

UINT Desktop::RegisterMessage(std::u16string_view name) {
  size_t index = 0;
  while (index < messages_.size() && !SameName(messages_[index], name)) ++index;
  if (index == kMostRegistered) return 0;
  if (index == messages_.size()) messages_.emplace_back(name);
  return kFirstRegistered + static_cast<UINT>(index);
}

void Desktop::ForgetProgram() {
  std::erase_if(windows_, [](const auto& entry) { return entry.second.thread != nullptr; });
  classes_.clear();
  focus_ = nullptr;
}

}  // namespace pal
