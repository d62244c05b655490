#include "pal/kernel/handles.h"

#include <algorithm>

namespace pal {

DWORD Object::Read(std::span<uint8_t> /*buffer*/, OVERLAPPED* /*overlapped*/, DWORD& /*transferred*/) {
  return ERROR_INVALID_HANDLE;
}

DWORD Object::Write(std::span<const uint8_t> /*bytes*/, OVERLAPPED* /*overlapped*/, DWORD& /*transferred*/) {
  return ERROR_INVALID_HANDLE;
}

HANDLE HandleTable::Add(std::shared_ptr<Object> object) {
  const auto handle = reinterpret_cast<HANDLE>(last_ += 4);
  objects_.emplace(handle, std::move(object));
  return handle;
}

std::shared_ptr<Object> HandleTable::FindObject(HANDLE handle) const {
  const auto found = objects_.find(handle);
  return found == objects_.end() ? nullptr : found->second;
}

bool HandleTable::Close(HANDLE handle) {
  const auto node = objects_.extract(handle);
  if (node.empty()) return false;
  node.mapped()->OnClose();
  return true;
}

int HandleTable::Count(std::string_view kind) const {
  return static_cast<int>(std::count_if(objects_.begin(), objects_.end(),
                                        [&](const auto& entry) { return entry.second->Kind() == kind; }));
}

void HandleTable::CloseAll() {
  while (!objects_.empty()) Close(objects_.begin()->first);
}

}  // namespace pal
