#include "kvshare/os/win32/listing.h"

#include "kvshare/os/win32/filefacts.h"
#include "kvshare/os/win32/names.h"
#include "kvshare/os/win32/quieterrors.h"
#include "kvshare/os/win32/systemnames.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::os::win32 {

namespace {

// Without short names, and many entries at a time.
HANDLE FindFirst(const std::wstring& pattern, WIN32_FIND_DATAW& found) {
  return FindFirstFileExW(pattern.c_str(), FindExInfoBasic, &found, FindExSearchNameMatch, nullptr,
                          FIND_FIRST_EX_LARGE_FETCH);
}

// An empty root has no entry at all, which the system tells as if the folder were missing.
SystemError WhyNoEntry(const std::wstring& folder, SystemError error) {
  if (error != ERROR_FILE_NOT_FOUND) return error;
  return IsFolder(folder) ? ERROR_SUCCESS : ERROR_PATH_NOT_FOUND;
}

constexpr bool IsSurrogate(wchar_t unit) {
  return unit >= 0xD800 && unit <= 0xDFFF;
}

}  // namespace

std::wstring CallFolder(const std::string& native) {
  std::wstring name = Wide(FullNativeName(native.empty() ? "." : native));
  if (!name.ends_with(L'\\')) name += L'\\';
  if (name.starts_with(L"\\\\?\\") || name.starts_with(L"\\\\.\\")) return name;
  return name.starts_with(L"\\\\") ? L"\\\\?\\UNC" + name.substr(1) : L"\\\\?\\" + name;
}

SystemError FolderListing::Read(const std::wstring& folder) {
  const QuietErrors quiet;
  WIN32_FIND_DATAW found{};
  const FindHandle search(FindFirst(folder + L'*', found));
  if (!search.IsOpen()) return WhyNoEntry(folder, GetLastError());
  do {
    Add(found);
  } while (FindNextFileW(search.Value(), &found) != 0);
  const SystemError error = GetLastError();
  return error == ERROR_NO_MORE_FILES ? ERROR_SUCCESS : error;
}

void FolderListing::Add(const WIN32_FIND_DATAW& found) {
  const std::wstring_view name = found.cFileName;
  // The first reserved field is the tag of a reparse point.
  entries_.push_back({names_.size(), name.size(), found.dwFileAttributes,
                      IsLink(found.dwFileAttributes, found.dwReserved0)});
  names_ += name;
}

std::string NativeName(std::wstring_view name) {
  try {
    return Utf8(name);
  } catch (const EConvertError&) {
    std::wstring text(name);
    for (std::size_t i = 0; i < text.size(); ++i) {
      const bool pair = IsSurrogate(text[i]) && text[i] < 0xDC00 && i + 1 < text.size() &&
                        IsSurrogate(text[i + 1]) && text[i + 1] >= 0xDC00;
      if (pair) {
        ++i;
      } else if (IsSurrogate(text[i])) {
        text[i] = L'\uFFFD';
      }
    }
    return Utf8(text);
  }
}

}  // namespace kvshare::os::win32
