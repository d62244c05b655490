// Objects that the program holds through COM.
#pragma once

#include <memory>
#include <vector>

namespace pal {

// It is freed when it is released, or with the program.
struct ComObject {
  ComObject() = default;
  virtual ~ComObject() = default;
  ComObject(const ComObject&) = delete;
  ComObject& operator=(const ComObject&) = delete;
};
using ComObjects = std::vector<std::unique_ptr<ComObject>>;

}  // namespace pal
