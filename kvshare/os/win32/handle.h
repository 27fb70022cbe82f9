// Owners of the system's handles.
// Internal header.
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

// Macros that would rename functions of ours.
#undef CopyFile
#undef DeleteFile

#include <utility>

namespace kvshare::os::win32 {

// Of files, processes and mappings: both the null handle and INVALID_HANDLE_VALUE are none.
class Handle {
 public:
  Handle() = default;
  explicit Handle(HANDLE handle) : handle_(handle == INVALID_HANDLE_VALUE ? nullptr : handle) {}
  ~Handle() { Close(); }
  Handle(Handle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
  Handle& operator=(Handle&& other) noexcept {
    if (this != &other) {
      Close();
      handle_ = std::exchange(other.handle_, nullptr);
    }
    return *this;
  }

  bool IsOpen() const { return handle_ != nullptr; }
  HANDLE Value() const { return handle_; }

  // False where the system refuses it; it is closed all the same.
  bool Close() { return handle_ == nullptr || CloseHandle(std::exchange(handle_, nullptr)) != 0; }

 private:
  HANDLE handle_ = nullptr;
};

// Of a search through a folder.
class FindHandle {
 public:
  explicit FindHandle(HANDLE handle) : handle_(handle) {}
  ~FindHandle() {
    if (IsOpen()) FindClose(handle_);
  }
  FindHandle(const FindHandle&) = delete;
  FindHandle& operator=(const FindHandle&) = delete;

  bool IsOpen() const { return handle_ != INVALID_HANDLE_VALUE; }
  HANDLE Value() const { return handle_; }

 private:
  HANDLE handle_;
};

}  // namespace kvshare::os::win32
