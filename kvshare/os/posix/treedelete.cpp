// A tree deleted from its ends upwards.
#include <vector>

#include "kvshare/os/posix/errors.h"
#include "kvshare/os/posix/treereport.h"
#include "kvshare/os/posix/treewalk.h"
#include "kvshare/os/tree.h"

namespace kvshare::os {

namespace posix {

namespace {

constexpr std::string_view kNotEmptyReason = "the folder is not empty";

int RemoveFolderAt(int parent, const char* name) {
  if (::unlinkat(parent, name, AT_REMOVEDIR) == 0) return 0;
  return errno == EEXIST ? ENOTEMPTY : errno;  // POSIX allows both for a full folder
}

bool IsEmptyFolder(const char* path) {
  const Descriptor folder(path, O_RDONLY | O_DIRECTORY);
  FolderListing listing;
  return folder.IsOpen() && listing.Read(folder.Value()) == 0 && listing.Entries().size() <= 2;
}

// Of a link the link goes, once what it leads to is empty.
int RemoveTop(std::string path) {
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
  if (path.empty()) path = ".";
  struct stat facts = {};
  if (::lstat(path.c_str(), &facts) == 0 && S_ISLNK(facts.st_mode)) {
    if (!IsEmptyFolder(path.c_str())) return ENOTEMPTY;
    return ::unlink(path.c_str()) == 0 ? 0 : errno;
  }
  return RemoveFolderAt(AT_FDCWD, path.c_str());
}

class Deleter : public TreeVisitor {
 public:
  explicit Deleter(TreeReport& report) : report_(report) {}

  bool Enter(const TreeLevel& level) override {
    entered_ = true;
    for (const auto& file : level.files) {
      const char* name = level.listing.ZName(file);
      if (::unlinkat(level.folder, name, 0) == 0) {
        ++deleted_.files;
      } else if (errno != ENOENT) {
        report_.Fail(level.path + name, errno);
      }
    }
    return true;
  }

  void Left(int parent, const TreeLevel& level) override { Remove(parent, level.name, level.path); }

  // It may be empty all the same.
  void Unreadable(int parent, const std::string& name, const std::string& path,
                  int error) override {
    if (error == ENOENT && entered_) return;
    if (parent < 0) return report_.Fail(path, error);
    Remove(parent, name, path);
  }

  // What somebody else has removed meanwhile is gone, as it should be.
  void Removed(int error, const std::string& path) {
    if (error == ENOENT && entered_) return;
    if (error != 0) {
      report_.Fail(path, error);
      ThrowInOut(PlatformCode(error));
    }
    ++deleted_.folders;
  }

  const TreeDeletion& Deleted() const { return deleted_; }

 private:
  void Remove(int parent, const std::string& name, const std::string& path) {
    Removed(RemoveFolderAt(parent, name.c_str()), path);
  }

  TreeReport& report_;
  TreeDeletion deleted_;
  bool entered_ = false;
};

class DeletionLister : public TreeVisitor {
 public:
  DeletionLister(const TreeReader& read, TreeReport& report) : read_(read), report_(report) {}

  bool Enter(const TreeLevel& level) override {
    for (const auto& file : level.files) {
      report_.Hand(read_, level, level.listing.Name(file), false);
    }
    keeps_.push_back(level.leftOut != 0);
    return true;
  }

  void Leave(const TreeLevel& level) override {
    const bool keeps = keeps_.back();
    keeps_.pop_back();
    if (level.path.empty()) {
      topGoes_ = !keeps;
      return;
    }
    if (keeps) {
      keeps_.back() = true;
      report_.Fail(level.path, kNotEmptyReason);
      return;
    }
    std::string_view parent = level.path;
    parent.remove_suffix(level.name.size() + 1);
    TreeLevel above;
    above.path = parent;
    report_.Hand(read_, above, level.name, true);
  }

  void Unreadable(int /*parent*/, const std::string& /*name*/, const std::string& path,
                  int error) override {
    report_.Fail(path, error);
    if (!keeps_.empty()) keeps_.back() = true;
  }

  bool TopGoes() const { return topGoes_; }

 private:
  const TreeReader& read_;
  TreeReport& report_;
  std::vector<bool> keeps_;  // of the folders on the way
  bool topGoes_ = false;
};

// Counts what keeps each folder.
class EmptyRemover : public TreeVisitor {
 public:
  bool Enter(const TreeLevel& level) override {
    kept_.push_back(level.files.size());
    return true;
  }

  void Leave(const TreeLevel& /*level*/) override {
    lastKept_ = kept_.back();
    kept_.pop_back();
  }

  void Left(int parent, const TreeLevel& level) override {
    if (lastKept_ != 0) {
      ++kept_.back();
    } else {
      Remove(parent, level.name);
    }
  }

  void Unreadable(int parent, const std::string& name, const std::string& /*path*/,
                  int /*error*/) override {
    if (parent >= 0) Remove(parent, name);
  }

  bool IsTopEmpty() const { return lastKept_ == 0; }

 private:
  static void Remove(int parent, const std::string& name) {
    const int error = RemoveFolderAt(parent, name.c_str());
    if (error != 0 && error != ENOENT) ThrowInOut(PlatformCode(error));
  }

  std::vector<std::size_t> kept_;
  std::size_t lastKept_ = 0;
};

TreeRules DeletionRules(const TreeScope& scope) {
  return {.mask = Mask(scope.mask), .recurse = scope.recurse, .followLinks = false};
}

}  // namespace

}  // namespace posix

TreeDeletion DeleteTree(const TreeScope& scope, const TreeFailure& failed) {
  posix::TreeReport report(scope.folder, failed);
  posix::Deleter deleter(report);
  posix::WalkTree(scope.folder, posix::DeletionRules(scope), deleter);
  if (scope.recurse) deleter.Removed(posix::RemoveTop(scope.folder), "");
  return deleter.Deleted();
}

void ListDeletion(const TreeScope& scope, const TreeReader& read, const TreeFailure& failed) {
  posix::TreeReport report(scope.folder, failed);
  posix::DeletionLister lister(read, report);
  posix::WalkTree(scope.folder, posix::DeletionRules(scope), lister);
  if (!scope.recurse) return;
  if (lister.TopGoes()) {
    read({"", "", true});
  } else {
    report.Fail("", posix::kNotEmptyReason);
  }
}

bool RemoveEmptyTree(const std::string& folder, bool recurse) {
  posix::EmptyRemover remover;
  const posix::TreeRules rules{.mask = Mask("*.*"), .recurse = recurse, .followLinks = false};
  posix::WalkTree(folder, rules, remover);
  if (!remover.IsTopEmpty()) return false;
  if (const int error = posix::RemoveTop(folder); error != 0) {
    posix::ThrowInOut(posix::PlatformCode(error));
  }
  return true;
}

}  // namespace kvshare::os
