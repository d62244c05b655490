// The tool on a simulated tablet, for tests of its rooms.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/tablet.h"

extern size_t refusedSize;  // the next piece of memory of exactly this size is refused

namespace veltra {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

inline std::string Joined(const Texts& texts) {
  std::string joined;
  for (const std::string& text : texts) joined.append(joined.empty() ? "" : "; ").append(text);
  return joined;
}

class ToolTest : public ::testing::Test {
 protected:
  void SetUserValue(std::u16string_view name, int32_t value) {
    machine.registry.SetDword(HKEY_CURRENT_USER, simulator::SimulatedTablet::kUserKey, name,
                              static_cast<uint32_t>(value));
  }
  std::optional<uint32_t> UserValue(std::u16string_view name) {
    return machine.registry.Dword(HKEY_CURRENT_USER, simulator::SimulatedTablet::kUserKey, name);
  }
  std::string Log() { return machine.disk.Read(simulator::SimulatedTablet::kLogFile).value_or(""); }
  // Detail lines are written while this file exists.
  void SwitchDetailsOn() { machine.disk.Write(u"C:\\Users\\Public\\Documents\\Sarvik5\\logon.txt", ""); }

  // What happened since the last call, of one kind.
  template <class Detail>
  std::vector<Detail> New() {
    const std::vector<pal::Effect> effects = tablet.Since(mark);
    mark = tablet.Mark();
    return pal::Select<Detail>(effects);
  }
  // Everything that the tool did since the last call, in words; or what begins with one of these.
  Texts Did(std::initializer_list<std::string_view> beginnings = {""}) {
    const std::vector<pal::Effect> effects = tablet.Since(mark);
    mark = tablet.Mark();
    Texts texts;
    for (const pal::Effect& effect : effects) {
      const std::string text = pal::Describe(effect);
      if (std::ranges::any_of(beginnings, [&](std::string_view with) { return text.starts_with(with); }))
        texts.push_back(text);
    }
    return texts;
  }
  // The texts that the controller was asked since the last call.
  Texts NewRequests() {
    Texts texts;
    const auto& requests = tablet.Pic().Requests();
    for (; requestMark < requests.size(); ++requestMark)
      texts.emplace_back(requests[requestMark].message.begin() + 1, requests[requestMark].message.end());
    return texts;
  }

  void Start(std::u16string_view arguments = u"-s") {
    ASSERT_TRUE(tablet.StartAndSettle(arguments));
    mark = tablet.Mark();
    NewRequests();
  }
  void Press(simulator::Button button) {
    tablet.Press(button);
    tablet.Advance(20ms);
  }
  void Release(simulator::Button button) {
    tablet.Release(button);
    tablet.Advance(20ms);
  }

  simulator::SimulatedTablet tablet;
  pal::Machine& machine = tablet.Machine();
  size_t mark = 0;
  size_t requestMark = 0;
};

inline std::vector<uint8_t> ToBytes(std::string_view text) {
  return {text.begin(), text.end()};
}

}  // namespace veltra
