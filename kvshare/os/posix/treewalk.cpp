#include "kvshare/os/posix/treewalk.h"

#include <algorithm>

namespace kvshare::os::posix {

namespace {

constexpr std::size_t kOpenFolders = 16;

Descriptor OpenFolder(int parent, const char* name, bool follow) {
  return {parent, name, O_RDONLY | O_DIRECTORY | (follow ? 0 : O_NOFOLLOW)};
}

bool Is(const Descriptor& folder, const Identity& identity) {
  struct stat facts = {};
  return folder.IsOpen() && ::fstat(folder.Value(), &facts) == 0 && IdentityOf(facts) == identity;
}

class Walk {
 public:
  Walk(const TreeRules& rules, TreeVisitor& visitor) : rules_(rules), visitor_(visitor) {}

  void Run(const std::string& top) {
    Descriptor folder = OpenFolder(AT_FDCWD, top.empty() ? "." : top.c_str(), true);
    if (!folder.IsOpen()) return visitor_.Unreadable(AT_FDCWD, top, "", errno);
    Enter(std::move(folder), {}, false);
    while (!ways_.empty()) {
      Way& way = ways_.back();
      if (way.next < way.level.subfolders.size() && stack_.Last() >= 0) {
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
    std::size_t next = 0;
  };

  void Descend(const TreeLevel& parent, const FolderListing::Entry& entry) {
    const char* name = parent.listing.ZName(entry);
    const bool link = entry.kind == EntryKind::Link;
    Descriptor folder = OpenFolder(stack_.Last(), name, rules_.followLinks);
    if (!folder.IsOpen())
      return visitor_.Unreadable(stack_.Last(), name, parent.path + name, errno);
    Enter(std::move(folder), name, link);
  }

  void Enter(Descriptor folder, std::string name, bool byLink) {
    struct stat facts = {};
    if (::fstat(folder.Value(), &facts) != 0) return;
    Way way;
    TreeLevel& level = way.level;
    level.folder = folder.Value();
    if (!ways_.empty()) level.parent = stack_.Last();
    level.mode = facts.st_mode;
    level.identity = IdentityOf(facts);
    if (byLink && stack_.Holds(level.identity)) return;
    if (!ways_.empty()) level.path = ways_.back().level.path + name + "/";
    level.name = std::move(name);
    if (const int error = level.listing.Read(level.folder); error != 0) {
      visitor_.Unreadable(-1, level.name, level.path, error);
    }
    Sort(level);
    if (!visitor_.Enter(level)) return;
    stack_.Push(std::move(folder), level.identity, level.name);
    ways_.push_back(std::move(way));
  }

  void Sort(TreeLevel& level) const {
    const bool masked = ways_.empty() && !rules_.mask.MatchesAll();
    std::string listed;
    for (FolderListing::Entry entry : level.listing.Entries()) {
      const std::string_view name = level.listing.Name(entry);
      if (name == "." || name == "..") continue;
      bool wanted = !name.starts_with('.');
      if (wanted && masked) {
        listed.clear();
        AppendListedName(listed, name);
        wanted = rules_.mask.Matches(listed);
      }
      if (!wanted && (name.starts_with('.') || rules_.maskFolders)) {
        ++level.leftOut;
        continue;
      }
      const ResolvedKind kind = Resolve(level.folder, level.listing.ZName(entry), entry.kind);
      if (kind.isLink) entry.kind = EntryKind::Link;
      Put(level, entry, kind, wanted);
    }
  }

  void Put(TreeLevel& level, const FolderListing::Entry& entry, ResolvedKind kind,
           bool matches) const {
    const bool entered = kind.isFolder && (rules_.followLinks || !kind.isLink);
    if (entered && rules_.recurse) {
      level.subfolders.push_back(entry);
    } else if (matches && (!kind.isFolder || (!entered && rules_.recurse))) {
      level.files.push_back(entry);
    } else {
      ++level.leftOut;
    }
  }

  void Ascend() {
    visitor_.Leave(ways_.back().level);
    const TreeLevel level = std::move(ways_.back().level);
    ways_.pop_back();
    if (ways_.empty()) return;
    stack_.Pop();
    ways_.back().level.folder = stack_.Last();
    visitor_.Left(stack_.Last(), level);
  }

  const TreeRules& rules_;
  TreeVisitor& visitor_;
  FolderStack stack_;
  std::vector<Way> ways_;
};

}  // namespace

void FolderStack::Push(Descriptor folder, const Identity& identity, std::string name) {
  places_.push_back({std::move(folder), identity, std::move(name)});
  const std::size_t size = places_.size();
  if (size > kOpenFolders + 1) places_[size - 1 - kOpenFolders].folder = Descriptor();
}

void FolderStack::Pop() {
  const Place left = std::move(places_.back());
  places_.pop_back();
  if (places_.empty() || places_.back().folder.IsOpen()) return;
  Descriptor parent(left.folder.Value(), "..", O_RDONLY | O_DIRECTORY);
  const bool found = Is(parent, places_.back().identity);  // not behind a link, nor when it moved
  places_.back().folder = found ? std::move(parent) : FindAgain(places_.size() - 1);
}

bool FolderStack::Holds(const Identity& identity) const {
  return std::ranges::any_of(places_, [&](const Place& p) { return p.identity == identity; });
}

// Down from the last open folder before it, each step checked.
Descriptor FolderStack::FindAgain(std::size_t place) const {
  std::size_t from = place;
  while (from > 0 && !places_[from].folder.IsOpen()) --from;
  Descriptor step;
  int parent = places_[from].folder.Value();
  for (std::size_t i = from + 1; i <= place; ++i) {
    Descriptor next = OpenFolder(parent, places_[i].name.c_str(), true);
    if (!Is(next, places_[i].identity)) return {};
    step = std::move(next);
    parent = step.Value();
  }
  return step;
}

void WalkTree(const std::string& top, const TreeRules& rules, TreeVisitor& visitor) {
  Walk(rules, visitor).Run(top);
}

}  // namespace kvshare::os::posix
