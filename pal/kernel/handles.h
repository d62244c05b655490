// What HANDLE values stand for.
#pragma once

#include <windows.h>

#include <cstdint>
#include <map>
#include <memory>
#include <span>
#include <string_view>

namespace pal {

// Anything that the program reaches through a HANDLE and closes with CloseHandle. All calls hold the
// machine's lock.
class Object {
 public:
  Object() = default;
  virtual ~Object() = default;
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  // The kind under which Machine::CountOpen counts it: "event", "file", ...
  [[nodiscard]] virtual std::string_view Kind() const = 0;
  // The handle was closed. Threads that use the object at this moment keep it alive a little longer.
  virtual void OnClose() {}

  // WaitForSingleObject: whether the waiter could go on now.
  [[nodiscard]] virtual bool IsWaitable() const { return false; }
  [[nodiscard]] virtual bool IsSignaled() const { return false; }

  // ReadFile and WriteFile. They return 0, ERROR_IO_PENDING or the error; `transferred` counts bytes.
  virtual DWORD Read(std::span<uint8_t> buffer, OVERLAPPED* overlapped, DWORD& transferred);
  virtual DWORD Write(std::span<const uint8_t> bytes, OVERLAPPED* overlapped, DWORD& transferred);
};

class HandleTable {
 public:
  // A value that no earlier handle had: a program that uses a closed handle is found out.
  HANDLE Add(std::shared_ptr<Object> object);
  // The object of the handle, null when the handle is closed or stands for an object of another type.
  template <class Type>
  [[nodiscard]] std::shared_ptr<Type> Find(HANDLE handle) const {
    return std::dynamic_pointer_cast<Type>(FindObject(handle));
  }
  // False when no such handle is open.
  bool Close(HANDLE handle);
  [[nodiscard]] int Count(std::string_view kind) const;
  void CloseAll();

 private:
  [[nodiscard]] std::shared_ptr<Object> FindObject(HANDLE handle) const;

  std::map<HANDLE, std::shared_ptr<Object>> objects_;
  uintptr_t last_ = 0x40;
};

}  // namespace pal
