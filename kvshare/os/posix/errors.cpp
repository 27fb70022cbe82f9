#include "kvshare/os/posix/errors.h"

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "kvshare/rtl/exceptions.h"

namespace kvshare::os::posix {

namespace {

struct ErrorRow {
  int system, platform;
};
constexpr ErrorRow kErrors[] = {
    {ENOENT, kFileNotFound},
    {ENOTDIR, kPathNotFound},
    {ELOOP, kPathNotFound},
    {ENAMETOOLONG, 206},
    {EMFILE, 4},
    {ENFILE, 4},
    {EACCES, kAccessDenied},
    {EPERM, kAccessDenied},
    {EROFS, kAccessDenied},
    {EISDIR, kAccessDenied},
    {EXDEV, 17},
    {EBUSY, 32},
    {ETXTBSY, 32},
    {ENOSPC, 101},
    {EDQUOT, 101},
    {EFBIG, 101},
    {ENOTEMPTY, kNotEmpty},
    {EEXIST, 183},
};

struct MessageRow {
  int code;
  std::string_view text;
};
constexpr MessageRow kMessages[] = {
    {kFileNotFound, "File not found"}, {kPathNotFound, "Invalid filename"},
    {4, "Too many open files"},        {kAccessDenied, "File access denied"},
    {100, "Read beyond end of file"},  {101, "Disk full"},
    {106, "Invalid numeric input"},
};

std::string MessageOf(int code) {
  for (const MessageRow& row : kMessages) {
    if (row.code == code) return std::string(row.text);
  }
  return "I/O error " + std::to_string(code);
}

}  // namespace

int PlatformCode(int error) {
  for (const ErrorRow& row : kErrors) {
    if (row.system == error) return row.platform;
  }
  return kGeneralFailure;
}

int PlatformCode(const std::string& path, int error) {
  const int code = PlatformCode(error);
  if (code != kFileNotFound) return code;
  std::error_code ignored;
  const std::filesystem::path folder = std::filesystem::path(path).parent_path();
  const bool folderMissing = !folder.empty() && !std::filesystem::is_directory(folder, ignored);
  return folderMissing || path.empty() ? kPathNotFound : kFileNotFound;
}

void ThrowFailed(const std::string& path, int error) {
  throw EInOutError(std::generic_category().message(error), PlatformCode(path, error));
}

void ThrowInOut(int platformCode) {
  throw EInOutError(MessageOf(platformCode), platformCode);
}

}  // namespace kvshare::os::posix
