#include "kvshare/os/win32/systemnames.h"

#include <algorithm>

#include "kvshare/os/win32/calltext.h"
#include "kvshare/os/win32/errors.h"
#include "kvshare/os/win32/names.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::os::win32 {

namespace {

bool BeginsWithLetter(std::string_view name) {
  return name.size() >= 2 && name[1] == ':' && UpCase(name[0]) >= 'A' && UpCase(name[0]) <= 'Z';
}

// `\\host\share` of a name that begins with `\\`.
std::string_view ShareOf(std::string_view name) {
  const std::size_t host = name.find('\\', 2);
  if (host == 2 || host == std::string_view::npos) return {};
  const std::size_t end = std::min(name.find('\\', host + 1), name.size());
  return end > host + 1 ? name.substr(0, end) : std::string_view();
}

// Unit by unit, as the system compares names: texts of different length are never equal.
bool SameName(std::wstring_view a, std::wstring_view b) {
  return a.size() == b.size() &&
         CompareStringOrdinal(a.data(), static_cast<int>(a.size()), b.data(),
                              static_cast<int>(b.size()), TRUE) == CSTR_EQUAL;
}

}  // namespace

std::string PlainName(std::string_view nativePath) {
  constexpr std::string_view kPrefix = R"(\\?\)";
  constexpr std::string_view kSharePrefix = R"(\\?\UNC\)";
  std::string name(nativePath);
  std::ranges::replace(name, '/', '\\');
  if (SameText(std::string_view(name).substr(0, kSharePrefix.size()), kSharePrefix)) {
    return name.replace(0, kSharePrefix.size(), R"(\\)");
  }
  const bool plain =
      name.starts_with(kPrefix) && BeginsWithLetter(std::string_view(name).substr(kPrefix.size()));
  return plain ? name.substr(kPrefix.size()) : name;
}

std::string NativeOf(std::wstring_view systemName) {
  return PlainName(Utf8(systemName));
}

std::string_view RootOf(std::string_view plainName) {
  if (plainName.starts_with(R"(\\)")) return ShareOf(plainName);
  if (!BeginsWithLetter(plainName)) return {};
  const bool rooted = plainName.size() == 2 || plainName[2] == '\\';
  return rooted ? plainName.substr(0, 2) : std::string_view();
}

bool IsDeviceName(std::string_view plainName) {
  return plainName.starts_with(R"(\\.\)") || plainName.starts_with(R"(\\?\)");
}

std::optional<std::string> RestBelow(std::string_view root, std::string_view path) {
  const std::wstring wideRoot = Wide(root);
  const std::wstring widePath = Wide(path);
  const std::wstring_view start = std::wstring_view(widePath).substr(0, wideRoot.size());
  const std::wstring_view rest = std::wstring_view(widePath).substr(start.size());
  const bool held = SameName(wideRoot, start) && (rest.empty() || rest.starts_with(L'\\'));
  return held ? std::optional(Utf8(rest)) : std::nullopt;
}

std::string NativeCurrentFolder() {
  const std::wstring folder =
      TextOfCall([](wchar_t* text, DWORD size) { return GetCurrentDirectoryW(size, text); });
  if (folder.empty()) ThrowLastError();
  return NativeOf(folder);
}

std::string FullNativeName(std::string_view nativePath) {
  const std::wstring name = CallName(nativePath);
  const std::wstring full = TextOfCall([&name](wchar_t* text, DWORD size) {
    return GetFullPathNameW(name.c_str(), size, text, nullptr);
  });
  if (full.empty()) ThrowLastError();
  return NativeOf(full);
}

}  // namespace kvshare::os::win32
