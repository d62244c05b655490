// A file of the disk that the program has open.
#pragma once

#include <memory>
#include <string>

#include "pal/kernel/handles.h"
#include "pal/store/disk.h"

namespace pal {

class DiskFile : public Object {
 public:
  DiskFile(std::shared_ptr<Opening> opening, std::u16string path)
      : opening_(std::move(opening)), path_(std::move(path)) {}

  [[nodiscard]] std::string_view Kind() const override { return "file"; }
  void OnClose() override { opening_.reset(); }
  DWORD Read(std::span<uint8_t> buffer, OVERLAPPED* overlapped, DWORD& transferred) override;
  DWORD Write(std::span<const uint8_t> bytes, OVERLAPPED* overlapped, DWORD& transferred) override;

  // Null once the handle is closed.
  [[nodiscard]] const Opening* HostFile() const { return opening_.get(); }

 private:
  std::shared_ptr<Opening> opening_;
  std::u16string path_;
};

}  // namespace pal
