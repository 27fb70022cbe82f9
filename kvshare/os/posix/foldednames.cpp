#include "kvshare/os/posix/foldednames.h"

#include <linux/magic.h>
#include <sys/inotify.h>
#include <sys/vfs.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <memory>

#include "kvshare/os/posix/descriptor.h"
#include "kvshare/os/posix/listing.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::os::posix {

namespace {

// File systems of this machine alone: of all others the system does not tell what happens there.
bool TellsChanges(int folder) {
  constexpr long kXfs = 0x58465342;
  constexpr std::array kLocal = {long{EXT4_SUPER_MAGIC}, long{BTRFS_SUPER_MAGIC}, kXfs,
                                 long{TMPFS_MAGIC}, long{F2FS_SUPER_MAGIC}};
  struct statfs facts = {};
  return ::fstatfs(folder, &facts) == 0 && std::ranges::count(kLocal, long{facts.f_type}) != 0;
}

// A folder's names, kept up to date by the system's own messages. These are there before the call
// that changed the folder returns, so that no change is missed.
class WatchedFolder {
 public:
  bool Watch(const std::string& path) {
    constexpr unsigned kChanges = IN_CREATE | IN_MOVED_TO | IN_DELETE | IN_MOVED_FROM |
                                  IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
    events_ = Descriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    return events_.IsOpen() && ::inotify_add_watch(events_.Value(), path.c_str(), kChanges) >= 0;
  }

  void Fill(const Identity& folder, const FolderListing& listing) {
    folder_ = folder;
    for (const auto& entry : listing.Entries()) names_.emplace(listing.Name(entry));
  }

  // A child process shares the messages with its parent and must not take them away.
  bool Covers(const Identity& folder) const { return folder == folder_ && process_ == ::getpid(); }

  // False when what the folder holds can no longer be found out.
  bool TakeChanges() {
    for (;;) {
      alignas(inotify_event) char block[4096];
      const ssize_t size = ::read(events_.Value(), block, sizeof block);
      if (size < 0 && errno == EINTR) continue;
      if (size <= 0) return size < 0 && errno == EAGAIN;
      for (ssize_t at = 0; at < size;) {
        const auto* event = reinterpret_cast<const inotify_event*>(block + at);
        if (!Take(*event)) return false;
        at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
      }
    }
  }

  const FoldedNames& Names() const { return names_; }

 private:
  bool Take(const inotify_event& event) {
    if ((event.mask & (IN_CREATE | IN_MOVED_TO)) != 0) return names_.emplace(event.name), true;
    if ((event.mask & (IN_DELETE | IN_MOVED_FROM)) != 0) {
      if (const auto it = names_.find(std::string_view(event.name)); it != names_.end()) {
        names_.erase(it);
      }
      return true;
    }
    return false;  // the folder itself has gone, or messages were lost
  }

  pid_t process_ = ::getpid();
  Identity folder_;
  Descriptor events_;
  FoldedNames names_;
};

// The folder that was watched last. Who uses it takes it out for that time, so that threads never
// share it. A thread-local object would keep the library loaded after dlclose.
std::atomic<std::shared_ptr<WatchedFolder>>& LastWatched() {
  static std::atomic<std::shared_ptr<WatchedFolder>> last;
  return last;
}

std::optional<std::string> Copied(const std::string* name) {
  return name != nullptr ? std::optional(*name) : std::nullopt;
}

std::optional<std::string> FindInListing(const FolderListing& listing, std::string_view name) {
  std::optional<std::string> found;
  for (const auto& entry : listing.Entries()) {
    const std::string_view candidate = listing.Name(entry);
    if (candidate.size() != name.size() || !SameText(candidate, name)) continue;
    if (!found || candidate < *found) found = candidate;
  }
  return found;
}

// Watches first and reads then, so that nothing falls between.
std::shared_ptr<WatchedFolder> WatchLarge(const std::string& path) {
  auto watched = std::make_shared<WatchedFolder>();
  if (!watched->Watch(path)) return nullptr;
  const Descriptor folder(path.c_str(), O_RDONLY | O_DIRECTORY);
  struct stat facts = {};
  FolderListing listing;
  if (!folder.IsOpen() || ::fstat(folder.Value(), &facts) != 0) return nullptr;
  if (listing.Read(folder.Value()) != 0) return nullptr;
  watched->Fill(IdentityOf(facts), listing);
  return watched;
}

}  // namespace

bool FoldedOrder::operator()(std::string_view a, std::string_view b) const {
  const int order = CompareText(a, b);
  return order != 0 ? order < 0 : a < b;
}

const std::string* FindFolded(const FoldedNames& names, std::string_view name) {
  // Of the names that differ in case alone the one in capitals is the first by bytes.
  const auto it = names.lower_bound(UpperCase(name));
  return it != names.end() && SameText(*it, name) ? &*it : nullptr;
}

std::optional<std::string> FindInFolder(const std::string& folder, std::string_view name) {
  const std::string path = folder.empty() ? "." : folder;
  struct stat facts = {};
  if (::stat(path.c_str(), &facts) != 0) return std::nullopt;
  if (auto watched = LastWatched().exchange(nullptr)) {
    const bool covers = watched->Covers(IdentityOf(facts)) && watched->TakeChanges();
    auto found = covers ? Copied(FindFolded(watched->Names(), name)) : std::nullopt;
    // Kept for the next name even when this one is looked up elsewhere, unless it is out of date.
    if (covers || !watched->Covers(IdentityOf(facts))) LastWatched().store(std::move(watched));
    if (covers) return found;
  }
  const Descriptor handle(path.c_str(), O_RDONLY | O_DIRECTORY);
  FolderListing listing;
  if (!handle.IsOpen()) return std::nullopt;
  listing.Read(handle.Value());  // what can be read counts
  constexpr std::size_t kLarge = 256;
  if (listing.Entries().size() >= kLarge && TellsChanges(handle.Value())) {
    if (auto watched = WatchLarge(path)) {
      auto found = Copied(FindFolded(watched->Names(), name));
      LastWatched().store(std::move(watched));
      return found;
    }
  }
  return FindInListing(listing, name);
}

}  // namespace kvshare::os::posix
