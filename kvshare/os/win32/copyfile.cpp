#include "kvshare/os/win32/copyfile.h"

#include <array>
#include <cstddef>

#include "kvshare/os/files.h"
#include "kvshare/os/win32/filefacts.h"
#include "kvshare/os/win32/names.h"
#include "kvshare/os/win32/temporaryfile.h"

namespace kvshare::os {

namespace win32 {

namespace {

constexpr DWORD kVisibility = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;

struct Source {
  const Handle& file;
  const FileFacts& facts;
};

SystemError CopyBytes(const Handle& from, const TemporaryFile& to) {
  std::array<char, 64 << 10> block;
  for (;;) {
    DWORD n = 0;
    if (ReadFile(from.Value(), block.data(), static_cast<DWORD>(block.size()), &n, nullptr) == 0) {
      return GetLastError();
    }
    if (n == 0) return ERROR_SUCCESS;
    if (const SystemError error = to.Write({block.data(), n}); error != ERROR_SUCCESS) return error;
  }
}

// `others` are the attributes besides read-only.
SystemError Fill(const Source& source, const TemporaryFile& to, DWORD others) {
  if (const SystemError error = CopyBytes(source.file, to); error != ERROR_SUCCESS) return error;
  const DWORD readOnly = source.facts.attributes & FILE_ATTRIBUTE_READONLY;
  return to.SetFacts(source.facts.written,
                     (others & kVisibility) | readOnly | FILE_ATTRIBUTE_ARCHIVE);
}

SystemError MakeNew(const Source& source, const std::wstring& to) {
  const DWORD attributes = source.facts.attributes;
  TemporaryFile temporary(to);
  if (const SystemError error = temporary.Create(attributes); error != 0) return error;
  if (const SystemError error = Fill(source, temporary, attributes); error != 0) return error;
  return temporary.TakeFreePlace();
}

SystemError Replace(const Source& source, const EarlierFile& earlier) {
  if (earlier.error != ERROR_SUCCESS) return earlier.error;
  if (IsSameFile(earlier.facts.identity, source.facts.identity)) return ERROR_SHARING_VIOLATION;
  const DWORD attributes = earlier.facts.attributes;
  TemporaryFile temporary(earlier.name);
  if (const SystemError error = temporary.CreateLike(earlier); error != 0) return error;
  if (const SystemError error = Fill(source, temporary, attributes); error != 0) return error;
  return temporary.TakePlace();
}

SystemError CopyOpened(const Source& source, const std::wstring& to, Place place) {
  if (place == Place::Free) return MakeNew(source, to);
  const EarlierFile earlier = FindEarlier(to);
  if (earlier.error != ERROR_FILE_NOT_FOUND) return Replace(source, earlier);
  const SystemError error = MakeNew(source, to);
  if (error != ERROR_ALREADY_EXISTS) return error;
  return Replace(source, FindEarlier(to));  // somebody has made it meanwhile
}

}  // namespace

SystemError CopyWhole(const std::wstring& from, const std::wstring& to, Place place) {
  const OpenedFile file = OpenEntry(from, {.flags = FILE_FLAG_SEQUENTIAL_SCAN});
  if (!file.IsOpen()) return file.error;
  const FileFacts facts = FactsOf(file.handle);
  if (!facts.IsKnown()) return facts.error;
  return CopyOpened({file.handle, facts}, to, place);
}

}  // namespace win32

bool CopyFile(std::string_view from, std::string_view to) {
  const auto source = win32::CallNameOrNone(from);
  const auto target = win32::CallNameOrNone(to);
  return source && target && win32::CopyWhole(*source, *target) == ERROR_SUCCESS;
}

}  // namespace kvshare::os
