#include "kvshare/os/win32/temporaryfile.h"

#include <algorithm>
#include <atomic>

#include "kvshare/os/win32/entryops.h"
#include "kvshare/os/win32/names.h"
#include "kvshare/os/win32/patience.h"

namespace kvshare::os::win32 {

namespace {

constexpr DWORD kPatience = 2000;  // milliseconds

std::wstring UniqueName() {
  static std::atomic<unsigned> last{0};
  return L".kvshare-" + std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++last) +
         L".tmp";
}

// A name beside another. It may be longer, and need the prefix of long names.
std::wstring NameBeside(std::wstring_view callName, const std::wstring& name) {
  std::wstring beside = std::wstring(FolderPart(callName)) + name;
  return beside.starts_with(L"\\\\?\\") ? beside : CallName(Utf8(beside));
}

// Of a name in another case or of the short form the one that the folder shows, which is to stay.
std::wstring SpelledName(const std::wstring& callName) {
  WIN32_FIND_DATAW found{};
  const FindHandle search(FindFirstFileW(callName.c_str(), &found));
  if (!search.IsOpen()) return callName;
  return NameBeside(callName, found.cFileName);
}

// The name to replace; "" where a link's target is not told, for else the link would be replaced.
std::wstring NameBehindLinks(const std::wstring& callName) {
  const DWORD attributes = GetFileAttributesW(callName.c_str());
  const bool mayBeLink =
      attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
  return mayBeLink ? FinalName(callName) : SpelledName(callName);
}

// A rename asks for no right to write the file that goes.
SystemError CannotReplace(const std::wstring& callName, const FileFacts& facts) {
  if (facts.IsFolder() || facts.IsReadOnly()) return ERROR_ACCESS_DENIED;
  return Patiently(kPatience, IsInUse, [&callName] {
    return OpenEntry(callName, {.access = FILE_WRITE_DATA | DELETE}).error;
  });
}

// A link that leads nowhere is there itself.
SystemError WhyUnknown(const std::wstring& callName, SystemError error) {
  const bool leadsNowhere =
      TellsMissing(error) && GetFileAttributesW(callName.c_str()) != INVALID_FILE_ATTRIBUTES;
  return leadsNowhere ? ERROR_PATH_NOT_FOUND : error;
}

std::vector<std::byte> RightsOf(const std::wstring& callName) {
  std::vector<std::byte> rights;
  DWORD size = 0;
  GetFileSecurityW(callName.c_str(), DACL_SECURITY_INFORMATION, nullptr, 0, &size);
  rights.resize(size);
  const BOOL read =
      GetFileSecurityW(callName.c_str(), DACL_SECURITY_INFORMATION, rights.data(), size, &size);
  if (read == 0) rights.clear();
  return rights;
}

}  // namespace

EarlierFile FindEarlier(const std::wstring& callName) {
  EarlierFile earlier;
  earlier.facts = LookAt(callName);
  if (!earlier.facts.IsKnown()) {
    earlier.error = WhyUnknown(callName, earlier.facts.error);
    return earlier;
  }
  earlier.name = NameBehindLinks(callName);
  earlier.error = earlier.name.empty() ? SystemError{ERROR_PATH_NOT_FOUND}
                                       : CannotReplace(earlier.name, earlier.facts);
  if (earlier.error == ERROR_SUCCESS) earlier.rights = RightsOf(earlier.name);
  return earlier;
}

TemporaryFile::~TemporaryFile() {
  file_.Close();
  if (!name_.empty()) RemoveFile(name_);
}

SystemError TemporaryFile::Create(DWORD attributes) {
  return Open(attributes, nullptr);
}

SystemError TemporaryFile::CreateLike(const EarlierFile& earlier) {
  if (earlier.rights.empty()) return Open(earlier.facts.attributes, nullptr);
  std::vector<std::byte> descriptor = earlier.rights;
  SECURITY_ATTRIBUTES rights{sizeof rights, descriptor.data(), FALSE};
  return Open(earlier.facts.attributes, &rights);
}

SystemError TemporaryFile::Open(DWORD attributes, SECURITY_ATTRIBUTES* rights) {
  constexpr DWORD kFromTheBeginning =
      FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ENCRYPTED;
  const Opening how{.access = GENERIC_WRITE,
                    .share = 0,
                    .disposition = CREATE_NEW,
                    .flags = FILE_ATTRIBUTE_ARCHIVE | (attributes & kFromTheBeginning),
                    .rights = rights};
  OpenedFile opened;
  do {  // a crashed process of the same number may have left its name behind
    name_ = NameBeside(target_, UniqueName());
    opened = OpenEntry(name_, how);
  } while (opened.error == ERROR_FILE_EXISTS);
  if (!opened.IsOpen()) name_.clear();
  file_ = std::move(opened.handle);
  return opened.error;
}

SystemError TemporaryFile::Write(std::string_view bytes) const {
  constexpr std::size_t kMost = std::size_t{16} << 20;  // servers refuse more at once
  while (!bytes.empty()) {
    const auto size = static_cast<DWORD>(std::min(bytes.size(), kMost));
    DWORD n = 0;
    if (WriteFile(file_.Value(), bytes.data(), size, &n, nullptr) == 0) return GetLastError();
    if (n == 0) return ERROR_DISK_FULL;
    bytes.remove_prefix(n);
  }
  return ERROR_SUCCESS;
}

SystemError TemporaryFile::SetFacts(const FILETIME& written, DWORD attributes) const {
  return win32::SetFacts(file_, written, attributes);
}

SystemError TemporaryFile::TakePlace() {
  if (FlushFileBuffers(file_.Value()) == 0) return GetLastError();
  if (!file_.Close()) return GetLastError();
  // The right to replace the file was looked at before: a denial is somebody who has it open.
  const auto isHeld = [](SystemError error) {
    return IsInUse(error) || error == ERROR_ACCESS_DENIED;
  };
  const SystemError error = Patiently(kPatience, isHeld, [this] {
    constexpr DWORD kHow = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
    return ErrorOf(MoveFileExW(name_.c_str(), target_.c_str(), kHow));
  });
  if (error == ERROR_SUCCESS) name_.clear();
  return error;
}

SystemError TemporaryFile::TakeFreePlace() {
  if (!file_.Close()) return GetLastError();
  const SystemError error = Patiently(kPatience, IsInUse, [this] {
    return ErrorOf(MoveFileExW(name_.c_str(), target_.c_str(), 0));
  });
  if (error == ERROR_SUCCESS) name_.clear();
  return error == ERROR_FILE_EXISTS ? SystemError{ERROR_ALREADY_EXISTS} : error;
}

}  // namespace kvshare::os::win32
