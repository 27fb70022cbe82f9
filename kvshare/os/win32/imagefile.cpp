#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <span>
#include <string>

#include "kvshare/os/version/imagereader.h"
#include "kvshare/os/version/versionresource.h"
#include "kvshare/os/win32/errors.h"
#include "kvshare/os/win32/handle.h"
#include "kvshare/os/win32/names.h"
#include "kvshare/os/win32/quieterrors.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::os {

namespace {

class ImageFile : public ImageReader {
 public:
  // Throws EInOutError. A program that runs, and one that is being replaced, can be read.
  explicit ImageFile(const std::wstring& callName)
      : file_(CreateFileW(callName.c_str(), GENERIC_READ,
                          FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                          OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr)) {
    if (!file_.IsOpen()) win32::ThrowLastError();
    // A folder or a device holds no image.
    if (GetFileType(file_.Value()) == FILE_TYPE_DISK) ReadSize();
  }

  std::uint64_t Size() const override { return size_; }

 private:
  void ReadSize() {
    BY_HANDLE_FILE_INFORMATION facts{};
    if (GetFileInformationByHandle(file_.Value(), &facts) == 0) win32::ThrowLastError();
    if ((facts.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) return;
    constexpr int kHalf = 32;
    size_ = std::uint64_t{facts.nFileSizeHigh} << kHalf | facts.nFileSizeLow;
  }

  bool Fill(std::uint64_t offset, std::span<char> to) const override {
    constexpr std::size_t kMost = std::size_t{1} << 30;
    while (!to.empty()) {
      const std::size_t n = ReadAt(offset, to.first(std::min(to.size(), kMost)));
      if (n == 0) return false;
      to = to.subspan(n);
      offset += n;
    }
    return true;
  }

  // 0 behind the file's end.
  std::size_t ReadAt(std::uint64_t offset, std::span<char> to) const {
    constexpr int kHalf = 32;
    OVERLAPPED place{};
    place.Offset = static_cast<DWORD>(offset);
    place.OffsetHigh = static_cast<DWORD>(offset >> kHalf);
    DWORD n = 0;
    if (ReadFile(file_.Value(), to.data(), static_cast<DWORD>(to.size()), &n, &place) != 0) {
      return n;
    }
    if (GetLastError() != ERROR_HANDLE_EOF) win32::ThrowLastError();
    return 0;
  }

  win32::Handle file_;
  std::uint64_t size_ = 0;
};

// A server that does not answer is no missing file: it may hold one.
bool TellsMissing(int code) {
  constexpr int kMissing[] = {
      win32::kFileNotFound, win32::kPathNotFound,       ERROR_INVALID_DRIVE, ERROR_INVALID_NAME,
      ERROR_BAD_PATHNAME,   ERROR_FILENAME_EXCED_RANGE, ERROR_DIRECTORY};
  return std::ranges::find(kMissing, code) != std::end(kMissing);
}

}  // namespace

// The system checks itself that a library whose end is missing is not loaded.
std::string VersionBlockOfFile(std::string_view fileName) {
  const win32::QuietErrors quiet;
  try {
    return VersionBlockOfImage(ImageFile(win32::CallNameOf(fileName)));
  } catch (const EInOutError& e) {
    if (!TellsMissing(e.ErrorCode())) throw;
    return {};
  }
}

}  // namespace kvshare::os
