#include "kvshare/os/win32/treewalk.h"

#include <utility>

#include "kvshare/os/win32/names.h"
#include "kvshare/os/win32/patience.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::os::win32 {

namespace {

// Nothing for a name that no folder can have.
std::wstring CallFolderOrNone(const std::string& native) {
  try {
    return CallFolder(native);
  } catch (const EInOutError&) {
    return {};
  } catch (const EConvertError&) {
    return {};
  }
}

class Walk {
 public:
  Walk(const TreeRules& rules, TreeVisitor& visitor) : rules_(rules), visitor_(visitor) {}

  void Run(const std::string& top) {
    TreeLevel level;
    level.folder = CallFolderOrNone(top);
    if (level.folder.empty()) return visitor_.Unreadable(L"", L"", ERROR_PATH_NOT_FOUND);
    HeldFolder held = HoldFolder(level.folder, true);
    if (held.error != ERROR_SUCCESS) return visitor_.Unreadable(L"", L"", held.error);
    Enter(std::move(level), std::move(held));
    while (!ways_.empty()) {
      Way& way = ways_.back();
      if (way.next < way.level.subfolders.size()) {
        Descend(way.level, way.level.subfolders[way.next++]);
      } else {
        Ascend();
      }
    }
  }

 private:
  // A folder and how far its subfolders have been walked.
  struct Way {
    TreeLevel level;
    Handle held;
    std::size_t next = 0;
  };

  void Descend(const TreeLevel& parent, const FolderListing::Entry& entry) {
    TreeLevel level;
    level.name = parent.listing.Name(entry);
    level.folder = parent.folder + level.name + L'\\';
    level.path = parent.path + level.name;
    HeldFolder held = HoldFolder(level.folder, false);
    if (held.error != ERROR_SUCCESS) {
      return visitor_.Unreadable(level.folder, level.path, held.error);
    }
    level.path += L'\\';
    Enter(std::move(level), std::move(held));
  }

  void Enter(TreeLevel level, HeldFolder held) {
    level.identity = held.identity;
    if (const SystemError error = level.listing.Read(level.folder); error != ERROR_SUCCESS) {
      visitor_.Unreadable(L"", level.path, error);
    }
    Sort(level);
    if (visitor_.Enter(level)) ways_.push_back({std::move(level), std::move(held.handle)});
  }

  void Sort(TreeLevel& level) const {
    const bool masked = ways_.empty() && !rules_.mask.MatchesAll();
    for (const FolderListing::Entry& entry : level.listing.Entries()) {
      const std::wstring_view name = level.listing.Name(entry);
      if (IsDots(name)) continue;
      const bool shown = !name.starts_with(L'.');
      const bool matches = shown && (!masked || rules_.mask.Matches(Cp874Lossy(name)));
      if (!shown || (!matches && rules_.maskFolders)) {
        ++level.leftOut;
      } else {
        Put(level, entry, matches);
      }
    }
  }

  void Put(TreeLevel& level, const FolderListing::Entry& entry, bool matches) const {
    const bool entered = entry.IsFolder() && !entry.isLink;
    if (entered && rules_.recurse) {
      level.subfolders.push_back(entry);
    } else if (matches && (!entry.IsFolder() || (!entered && rules_.recurse))) {
      level.files.push_back(entry);
    } else {
      ++level.leftOut;
    }
  }

  void Ascend() {
    visitor_.Leave(ways_.back().level);
    const TreeLevel level = std::move(ways_.back().level);
    ways_.pop_back();
    if (!ways_.empty()) visitor_.Left(level);
  }

  const TreeRules& rules_;
  TreeVisitor& visitor_;
  std::vector<Way> ways_;
};

// With a final `\` the system would follow a link.
std::wstring WithoutFinalBackslash(const std::wstring& folder) {
  return folder.ends_with(L'\\') ? folder.substr(0, folder.size() - 1) : folder;
}

// An attribute's right alone would keep nobody from renaming the folder.
OpenedFile OpenToHold(const std::wstring& folder, bool follow) {
  constexpr DWORD kPatience = 500;  // milliseconds
  const std::wstring name = follow ? folder : WithoutFinalBackslash(folder);
  const DWORD link = follow ? 0 : FILE_FLAG_OPEN_REPARSE_POINT;
  const Opening how{.access = FILE_LIST_DIRECTORY | FILE_READ_ATTRIBUTES,
                    .share = FILE_SHARE_READ | FILE_SHARE_WRITE,
                    .flags = FILE_FLAG_BACKUP_SEMANTICS | link};
  OpenedFile opened;
  Patiently(kPatience, IsInUse, [&] {
    opened = OpenEntry(name, how);
    return opened.error;
  });
  return opened;
}

}  // namespace

HeldFolder HoldFolder(const std::wstring& folder, bool follow) {
  OpenedFile opened = OpenToHold(folder, follow);
  if (!opened.IsOpen()) return {.error = opened.error};
  const FileFacts facts = FactsOf(opened.handle);
  if (!facts.IsKnown()) return {.error = facts.error};
  const bool isOther = !facts.IsFolder() || (!follow && IsLink(opened.handle));
  if (isOther) return {.error = ERROR_DIRECTORY};
  return {std::move(opened.handle), facts.identity};
}

void WalkTree(const std::string& top, const TreeRules& rules, TreeVisitor& visitor) {
  Walk(rules, visitor).Run(top);
}

}  // namespace kvshare::os::win32
