// Dialog templates of the extended form, as resources hold them.
#pragma once

#include <windows.h>

#include <span>
#include <string>
#include <vector>

namespace pal {

struct TemplateControl {
  DWORD exStyle = 0;
  DWORD style = 0;
  RECT rect{};  // in pixels
  DWORD id = 0;
  std::u16string windowClass;
  std::u16string text;
};

struct DialogTemplate {
  DWORD exStyle = 0;
  DWORD style = 0;
  RECT rect{};  // in pixels
  std::u16string caption;
  std::vector<TemplateControl> controls;
};

// Dies of what the layer does not know: the old form, menus, classes of one's own.
DialogTemplate ReadDialogTemplate(std::span<const uint8_t> data);

}  // namespace pal
