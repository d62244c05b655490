// Calls that a test lets fail.
#pragma once

#include <windows.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace pal {

class FailureTable {
 public:
  void Arm(std::string function, int times, DWORD error, int skip) {
    armed_[std::move(function)] = {skip, times, error};
  }
  void Disarm() { armed_.clear(); }

  // The error with which this call of the function shall fail, empty when it shall work. Counts the call.
  std::optional<DWORD> Take(std::string_view function) {
    const auto found = armed_.find(function);
    if (found == armed_.end()) return std::nullopt;
    Armed& armed = found->second;
    if (armed.skip-- > 0) return std::nullopt;
    const DWORD error = armed.error;
    if (--armed.times <= 0) armed_.erase(found);
    return error;
  }

 private:
  struct Armed {
    int skip;
    int times;
    DWORD error;
  };
  std::map<std::string, Armed, std::less<>> armed_;
};

}  // namespace pal
