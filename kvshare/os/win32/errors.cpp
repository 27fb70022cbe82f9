#include "kvshare/os/win32/errors.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "kvshare/os/win32/handle.h"
#include "kvshare/os/win32/names.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::os::win32 {

namespace {

constexpr int kDiskFull = 101;

constexpr SystemError kQuotaExceeded = 1295;  // newer than the headers of some compilers

constexpr SystemError kFullDisks[] = {ERROR_DISK_FULL, ERROR_HANDLE_DISK_FULL, kQuotaExceeded,
                                      ERROR_FILE_TOO_LARGE};

struct MessageRow {
  int code;
  std::string_view text;
};
constexpr MessageRow kMessages[] = {
    {kFileNotFound, "File not found"}, {kPathNotFound, "Invalid filename"},
    {4, "Too many open files"},        {kAccessDenied, "File access denied"},
    {100, "Read beyond end of file"},  {kDiskFull, "Disk full"},
    {106, "Invalid numeric input"},
};

std::string PlatformMessage(int code) {
  for (const MessageRow& row : kMessages) {
    if (row.code == code) return std::string(row.text);
  }
  return "I/O error " + std::to_string(code);
}

// In the language that the system speaks to this user.
std::wstring SystemWords(SystemError error) {
  constexpr std::size_t kLongest = 4096;
  constexpr DWORD kOneLine = FORMAT_MESSAGE_MAX_WIDTH_MASK;  // a line break becomes a blank
  std::array<wchar_t, kLongest> text{};
  const DWORD length =
      FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | kOneLine, nullptr,
                     error, 0, text.data(), kLongest, nullptr);
  std::wstring words(text.data(), length);
  words.erase(words.find_last_not_of(L" \t\r\n") + 1);  // npos + 1 is 0
  return words.empty() ? L"error " + std::to_wstring(error) : words;
}

}  // namespace

int PlatformCode(SystemError error) {
  return std::ranges::find(kFullDisks, error) != std::end(kFullDisks) ? kDiskFull
                                                                      : static_cast<int>(error);
}

std::string MessageOf(SystemError error) {
  return Utf8(SystemWords(error));
}

void ThrowFailed(SystemError error) {
  throw EInOutError(Cp874Lossy(SystemWords(error)), PlatformCode(error));
}

void ThrowLastError() {
  ThrowFailed(GetLastError());
}

void ThrowInOut(int platformCode) {
  throw EInOutError(PlatformMessage(platformCode), platformCode);
}

}  // namespace kvshare::os::win32
