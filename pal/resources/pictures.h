// Icons that the program has loaded from its resources. Nothing is drawn: a picture is the resource's number.
#pragma once

#include <windows.h>

#include <map>

namespace pal {

class Pictures {
 public:
  HICON Load(int resource, int size);
  // The same handle for the same resource, for ever.
  HICON Share(int resource);
  // False when it is no picture that Load gave.
  bool Destroy(HICON icon) { return loaded_.erase(icon) != 0; }
  // 0 when there is no such picture.
  [[nodiscard]] int ResourceOf(HICON icon) const;
  [[nodiscard]] int SizeOf(HICON icon) const;  // pixels; 0 when Load gave no such picture
  [[nodiscard]] int CountLoaded() const { return static_cast<int>(loaded_.size()); }
  void Clear() { loaded_.clear(); }

 private:
  std::map<HICON, int> loaded_;
  std::map<HICON, int> sizes_;
  std::map<HICON, int> shared_;
  uintptr_t last_ = 0x60000;
};

}  // namespace pal
