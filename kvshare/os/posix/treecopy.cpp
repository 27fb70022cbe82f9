// A tree copied over another.
#include <unordered_set>
#include <vector>

#include "kvshare/os/posix/copyfile.h"
#include "kvshare/os/posix/foldednames.h"
#include "kvshare/os/posix/treereport.h"
#include "kvshare/os/posix/treewalk.h"
#include "kvshare/os/tree.h"

namespace kvshare::os {

namespace posix {

namespace {

// The folders on the way to where files are copied now.
class Copier : public TreeVisitor {
 public:
  Copier(const std::string& target, TreeReport& report) : target_(target), report_(report) {}

  bool Enter(const TreeLevel& level) override {
    if (level.identity == top_) return false;  // the target, inside the source
    const int error = level.path.empty() ? OpenTop() : EnterBelow(level);
    if (error != 0) return report_.Fail(level.path, error), false;
    for (const auto& file : level.files) Copy(level, file);
    return true;
  }

  void Left(int /*parent*/, const TreeLevel& /*level*/) override {
    folders_.Pop();
    earlier_.pop_back();
  }

  void Unreadable(int /*parent*/, const std::string& /*name*/, const std::string& path,
                  int error) override {
    report_.Fail(path, error);
  }

  std::uint64_t Copied() const { return copied_; }

 private:
  // What a folder of the target held before, and which of its names have been taken by others.
  struct Earlier {
    FoldedNames names;
    std::unordered_set<std::string> taken;
  };

  int OpenTop() {
    Descriptor folder(target_.c_str(), O_RDONLY | O_DIRECTORY);
    if (!folder.IsOpen()) return errno;
    return Push(std::move(folder), {}, false);
  }

  int EnterBelow(const TreeLevel& level) {
    const std::string name = TargetName(level.parent, level.name);
    const mode_t mode = (level.mode & 0777u) | S_IRWXU;
    const bool isNew = ::mkdirat(folders_.Last(), name.c_str(), mode) == 0;
    if (!isNew && errno != EEXIST) return errno;
    Descriptor folder(folders_.Last(), name.c_str(), O_RDONLY | O_DIRECTORY);
    if (!folder.IsOpen()) return errno;
    return Push(std::move(folder), name, isNew);
  }

  // Remembers what a folder that was there before holds.
  int Push(Descriptor folder, const std::string& name, bool isNew) {
    struct stat facts = {};
    if (::fstat(folder.Value(), &facts) != 0) return errno;
    FoldedNames names;
    if (!isNew) {
      FolderListing listing;
      listing.Read(folder.Value());  // names that cannot be read are found as spelled
      for (const auto& entry : listing.Entries()) names.emplace(listing.Name(entry));
    }
    if (earlier_.empty()) top_ = IdentityOf(facts);
    folders_.Push(std::move(folder), IdentityOf(facts), name);
    earlier_.push_back({std::move(names), {}});
    return 0;
  }

  // A name that was there before in another case is that file's, unless the source has both. Of
  // several that differ in case only, the first takes it, and the others have their own names.
  std::string TargetName(int source, const std::string& name) {
    const FoldedNames& earlier = earlier_.back().names;
    if (earlier.empty() || earlier.contains(name)) return name;
    const std::string* other = FindFolded(earlier, name);
    struct stat facts = {};
    const bool free =
        other != nullptr && ::fstatat(source, other->c_str(), &facts, AT_SYMLINK_NOFOLLOW) != 0;
    return free && earlier_.back().taken.insert(*other).second ? *other : name;
  }

  void Copy(const TreeLevel& level, const FolderListing::Entry& file) {
    const char* name = level.listing.ZName(file);
    const int error = earlier_.back().names.empty()
                          ? CopyFileAt(level.folder, name, folders_.Last(), name)
                          : CopyFileAt(level.folder, name, folders_.Last(),
                                       TargetName(level.folder, name).c_str());
    if (error != 0) return report_.Fail(level.path + name, error);
    ++copied_;
  }

  const std::string& target_;
  TreeReport& report_;
  FolderStack folders_;
  std::vector<Earlier> earlier_;
  Identity top_;
  std::uint64_t copied_ = 0;
};

}  // namespace

}  // namespace posix

std::uint64_t CopyTree(const TreeScope& scope, const std::string& target,
                       const TreeFailure& failed) {
  posix::TreeReport report(scope.folder, failed);
  posix::Copier copier(target, report);
  posix::WalkTree(scope.folder, {.mask = Mask(scope.mask), .recurse = scope.recurse}, copier);
  return copier.Copied();
}

}  // namespace kvshare::os
