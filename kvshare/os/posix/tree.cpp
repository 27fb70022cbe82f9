#include "kvshare/os/tree.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "kvshare/os/posix/treereport.h"
#include "kvshare/os/posix/treewalk.h"

namespace kvshare::os {

namespace posix {

TreeReport::TreeReport(std::string folder, const TreeFailure& failed)
    : folder_(std::move(folder)), failed_(failed) {
  if (!folder_.empty() && !folder_.ends_with('/')) folder_ += '/';
}

void TreeReport::Fail(const std::string& path, int error) const {
  if (failed_) Fail(path, std::generic_category().message(error));
}

void TreeReport::Fail(const std::string& path, std::string_view reason) const {
  if (failed_) failed_(folder_ + path, reason);
}

void TreeReport::Hand(const TreeReader& read, const TreeLevel& level, std::string_view name,
                      bool isFolder) {
  native_.assign(level.path).append(name);
  listed_.clear();
  AppendListedName(listed_, native_);
  std::ranges::replace(listed_, '/', '\\');
  read({native_, listed_, isFolder});
}

namespace {

class Counter : public TreeVisitor {
 public:
  explicit Counter(TreeReport& report) : report_(report) {}

  bool Enter(const TreeLevel& level) override {
    count_ += level.files.size();
    return true;
  }
  void Unreadable(int /*parent*/, const std::string& /*name*/, const std::string& path,
                  int error) override {
    report_.Fail(path, error);
  }
  std::uint64_t Count() const { return count_; }

 private:
  TreeReport& report_;
  std::uint64_t count_ = 0;
};

class Lister : public TreeVisitor {
 public:
  Lister(const TreeReader& read, TreeReport& report) : read_(read), report_(report) {}

  void Leave(const TreeLevel& level) override {
    for (const auto& file : level.files) {
      report_.Hand(read_, level, level.listing.Name(file), false);
    }
  }
  void Unreadable(int /*parent*/, const std::string& /*name*/, const std::string& path,
                  int error) override {
    report_.Fail(path, error);
  }

 private:
  const TreeReader& read_;
  TreeReport& report_;
};

}  // namespace

}  // namespace posix

std::uint64_t CountTree(const TreeScope& scope, const TreeFailure& failed) {
  posix::TreeReport report(scope.folder, failed);
  posix::Counter counter(report);
  posix::WalkTree(scope.folder, {.mask = Mask(scope.mask), .recurse = scope.recurse}, counter);
  return counter.Count();
}

void ListTree(const TreeScope& scope, const TreeReader& read, const TreeFailure& failed) {
  posix::TreeReport report(scope.folder, failed);
  posix::Lister lister(read, report);
  const posix::TreeRules rules{
      .mask = Mask(scope.mask), .recurse = scope.recurse, .maskFolders = false};
  posix::WalkTree(scope.folder, rules, lister);
}

}  // namespace kvshare::os
