#include "kvshare/os/registry/storefile.h"

#include <atomic>
#include <string_view>
#include <utility>

#include "kvshare/os/registry/sqlite.h"
#include "kvshare/os/win32/entryops.h"
#include "kvshare/os/win32/filefacts.h"
#include "kvshare/os/win32/names.h"
#include "kvshare/os/win32/patience.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::os::store {

namespace {

using win32::FileFacts;
using win32::SystemError;

[[noreturn]] void Throw(const std::string& what, SystemError error) {
  constexpr int kDiskFull = 101;
  if (win32::PlatformCode(error) == kDiskFull) throw StoreError("the disk is full");
  throw StoreError(what + ": " + win32::MessageOf(error));
}

// The name for calls. A home folder's name may be none.
std::wstring NameOf(const std::string& path) {
  try {
    return win32::CallName(path);
  } catch (const EInOutError&) {
    throw StoreError("no file can have its name");
  }
}

// Without a final separator, unless it is a root; "" above that.
std::string FolderOf(const std::string& path) {
  const std::size_t separator = path.find_last_of("\\/");
  if (separator == std::string::npos) return {};
  const bool isRoot = separator == 2 && path[1] == ':';
  std::string folder = path.substr(0, isRoot ? separator + 1 : separator);
  return folder.size() < path.size() ? folder : std::string();
}

// What SQLite keeps beside a file; gone when the last connection is closed.
constexpr std::string_view kCompanions[] = {"-wal", "-shm", "-journal"};

std::string Companion(const std::string& path, std::string_view suffix) {
  return path + std::string(suffix);
}

// The file under construction, removed with its companions.
class Draft {
 public:
  explicit Draft(const std::string& target) {
    static std::atomic<unsigned> last{0};
    path_ = target + ".new-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++last);
    win32::RemoveFile(NameOf(path_));  // a crashed process of the same number may have left it
    const SystemError error =
        win32::OpenEntry(NameOf(path_), {.access = GENERIC_WRITE, .disposition = CREATE_NEW}).error;
    if (error != ERROR_SUCCESS) Throw("it cannot be made", error);
  }
  ~Draft() {
    DeleteFileW(win32::CallName(path_).c_str());
    for (const std::string_view suffix : kCompanions) {
      DeleteFileW(win32::CallName(Companion(path_, suffix)).c_str());
    }
  }
  Draft(const Draft&) = delete;
  Draft& operator=(const Draft&) = delete;

  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

// A renaming that replaces nothing. It is waited for until it is on the disk.
void GiveName(const std::string& draft, const std::string& path) {
  constexpr DWORD kPatience = 2000;  // milliseconds
  const SystemError error = win32::Patiently(kPatience, win32::IsInUse, [&] {
    return win32::ErrorOf(
        MoveFileExW(NameOf(draft).c_str(), NameOf(path).c_str(), MOVEFILE_WRITE_THROUGH));
  });
  const bool isThere = error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS;
  if (error != ERROR_SUCCESS && !isThere) Throw("it cannot be made", error);
}

// Whether this user may open it so; what somebody else keeps for himself he may.
bool May(const std::string& path, DWORD access) {
  const SystemError error =
      win32::OpenEntry(NameOf(path), {.access = access, .flags = FILE_FLAG_BACKUP_SEMANTICS}).error;
  return error == ERROR_SUCCESS || win32::IsInUse(error);
}

bool MayMakeFilesIn(const std::string& folder) {
  return May(folder.empty() ? "." : folder, FILE_ADD_FILE);
}

bool IsThere(const std::string& path) {
  return win32::LookAt(NameOf(path)).IsKnown();
}

void RequireSpace(const std::string& folder) {
  constexpr ULONGLONG kLeast = 64 << 10;
  ULARGE_INTEGER left{};
  const std::wstring name = NameOf(folder);
  if (GetDiskFreeSpaceExW(name.c_str(), &left, nullptr, nullptr) == 0) return;
  if (left.QuadPart < kLeast) throw StoreError("the disk is full");
}

// The last of the folders above a file that is there, else the first.
std::string ExistingFolder(const std::string& path) {
  std::string folder = FolderOf(path);
  if (folder.empty()) return ".";
  while (!IsThere(folder)) {
    std::string above = FolderOf(folder);
    if (above.empty()) break;
    folder = std::move(above);
  }
  return folder;
}

}  // namespace

std::optional<FileIdentity> IdentityOf(const std::string& path) {
  const FileFacts facts = win32::LookAt(NameOf(path));
  if (win32::TellsMissing(facts.error)) return std::nullopt;
  if (!facts.IsKnown()) Throw("it cannot be reached", facts.error);
  if (facts.IsFolder()) throw StoreError("it is a folder or a device, not a settings store");
  if (facts.size == 0) throw StoreError("it is damaged: the file is empty");
  return FileIdentity{facts.identity.volume, facts.identity.number};
}

void CreateWhole(const std::string& path, const std::function<void(const std::string&)>& fill) {
  const std::string folder = FolderOf(path);
  const SystemError error = folder.empty() ? ERROR_SUCCESS : win32::MakeFolders(folder);
  if (error != ERROR_SUCCESS) Throw("its folder cannot be made", error);
  const Draft draft(path);
  fill(draft.Path());
  GiveName(draft.Path(), path);
}

std::int64_t SizeOf(const std::string& path) {
  const FileFacts facts = win32::LookAt(NameOf(path));
  if (!facts.IsKnown()) Throw("it cannot be reached", facts.error);
  return static_cast<std::int64_t>(facts.size);
}

bool MayWrite(const std::string& path) {
  return May(path, FILE_WRITE_DATA);
}

bool HasLog(const std::string& path) {
  const FileFacts facts = win32::LookAt(NameOf(Companion(path, kCompanions[0])));
  return facts.IsKnown() && facts.size > 0;
}

bool IsInClosedFolder(const std::string& path) {
  for (const std::string_view suffix : kCompanions) {
    if (IsThere(Companion(path, suffix))) return false;
  }
  return !MayMakeFilesIn(FolderOf(path));
}

void RequireWritable(const std::string& path) {
  if (IsThere(path) && !MayWrite(path)) throw StoreError("it may only be read");
  const std::string folder = ExistingFolder(path);
  if (!win32::IsFolder(NameOf(folder))) throw StoreError(folder + " is no folder");
  if (!MayMakeFilesIn(folder)) throw StoreError("the folder " + folder + " may not be written");
  RequireSpace(folder);
}

}  // namespace kvshare::os::store
