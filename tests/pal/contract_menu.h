// The menu of the contract tests' resources, destroyed at the end.
#pragma once

#include <windows.h>

#include "tests/pal/contract_ids.h"

namespace contract {

class ContractMenu {
 public:
  ContractMenu() {
    const HRSRC resource = FindResourceExW(nullptr, RT_MENU, MAKEINTRESOURCEW(CONTRACT_MENU), LANG_NEUTRAL);
    handle_ = LoadMenuIndirectW(LockResource(LoadResource(nullptr, resource)));
  }
  ~ContractMenu() { DestroyMenu(handle_); }
  ContractMenu(const ContractMenu&) = delete;
  ContractMenu& operator=(const ContractMenu&) = delete;

  [[nodiscard]] HMENU Get() const { return handle_; }

 private:
  HMENU handle_ = nullptr;
};

}  // namespace contract
