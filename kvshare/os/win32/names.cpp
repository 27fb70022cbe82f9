#include "kvshare/os/win32/names.h"

#include <climits>

#include "kvshare/os/paths.h"
#include "kvshare/os/win32/calltext.h"
#include "kvshare/os/win32/errors.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::os::win32 {

namespace {

// A letter takes at most three bytes of UTF-8 for each unit of UTF-16, and never more units than
// bytes: buffers of that size do without a second call.
constexpr std::size_t kBytesPerUnit = 3;

int SizeForCall(std::size_t size) {
  constexpr std::size_t kMost = INT_MAX / kBytesPerUnit;
  if (size > kMost) throw EConvertError("A text is too long for the system");
  return static_cast<int>(size);
}

constexpr bool IsHigh(wchar_t unit) {
  return unit >= 0xD800 && unit <= 0xDBFF;
}

constexpr bool IsLow(wchar_t unit) {
  return unit >= 0xDC00 && unit <= 0xDFFF;
}

constexpr bool IsSeparator(wchar_t unit) {
  return unit == L'\\' || unit == L'/';
}

bool BeginsWithTwoSeparators(std::wstring_view name) {
  return name.size() >= 2 && IsSeparator(name[0]) && IsSeparator(name[1]);
}

bool IsAbsolute(std::wstring_view name) {
  const bool letter = name.size() >= 3 && name[1] == L':' && IsSeparator(name[2]);
  return letter || BeginsWithTwoSeparators(name);
}

// Names that the system takes as they stand, devices among them.
bool HasPrefix(std::wstring_view name) {
  return name.starts_with(L"\\\\?\\") || name.starts_with(L"\\\\.\\");
}

std::wstring WithPrefix(const std::wstring& fullName) {
  if (fullName.starts_with(L"\\\\")) return L"\\\\?\\UNC" + fullName.substr(1);
  return L"\\\\?\\" + fullName;
}

// As the system resolves it: against the current folder, without `.`, `..` and what the system
// drops from the ends of names. The prefix keeps it from doing so itself.
std::wstring FullName(const std::wstring& name) {
  return TextOfCall([&name](wchar_t* text, DWORD size) {
    return GetFullPathNameW(name.c_str(), size, text, nullptr);
  });
}

// A zero byte would cut the name short, and another file would be meant.
std::wstring WideName(std::string_view nativePath) {
  if (nativePath.find('\0') != std::string_view::npos) ThrowInOut(kPathNotFound);
  try {
    return Wide(nativePath);
  } catch (const EConvertError&) {
    ThrowInOut(kPathNotFound);
  }
}

}  // namespace

std::wstring Wide(std::string_view utf8) {
  if (utf8.empty()) return {};  // the call takes it for a mistake
  std::wstring wide(utf8.size(), L'\0');
  const int size = SizeForCall(utf8.size());
  const int length =
      MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, utf8.data(), size, wide.data(), size);
  if (length <= 0) throw EConvertError("A text is no UTF-8");
  wide.resize(static_cast<std::size_t>(length));
  return wide;
}

std::string Utf8(std::wstring_view wide) {
  if (wide.empty()) return {};
  const int size = SizeForCall(wide.size());
  std::string utf8(kBytesPerUnit * wide.size(), '\0');
  const int length =
      WideCharToMultiByte(CP_UTF8, WC_ERR_INVALID_CHARS, wide.data(), size, utf8.data(),
                          static_cast<int>(utf8.size()), nullptr, nullptr);
  if (length <= 0) throw EConvertError("A text of the system is no UTF-16");
  utf8.resize(static_cast<std::size_t>(length));
  return utf8;
}

std::string Cp874Lossy(std::wstring_view wide) {
  std::string bytes;
  bytes.reserve(wide.size());
  for (std::size_t i = 0; i < wide.size(); ++i) {
    const auto byte = UnicodeToCp874(wide[i]);
    bytes += byte ? static_cast<char>(*byte) : '?';
    const bool pair = IsHigh(wide[i]) && i + 1 < wide.size() && IsLow(wide[i + 1]);
    if (pair) ++i;  // one letter, one mark
  }
  return bytes;
}

std::wstring CallName(std::string_view nativePath) {
  // The system lets a file's name have 259 letters and a folder's 247; a search adds some.
  constexpr std::size_t kMostPlain = 240;
  std::wstring name = WideName(nativePath);
  if (HasPrefix(name) || (IsAbsolute(name) && name.size() <= kMostPlain)) return name;
  const std::wstring full = FullName(name);
  if (full.size() <= kMostPlain || HasPrefix(full)) return name;
  return WithPrefix(full);
}

std::wstring CallNameOf(std::string_view windowsPath) {
  return CallName(NativePath(windowsPath));
}

std::optional<std::wstring> CallNameOrNone(std::string_view windowsPath) {
  try {
    return CallNameOf(windowsPath);
  } catch (const EInOutError&) {
    return std::nullopt;
  }
}

}  // namespace kvshare::os::win32
