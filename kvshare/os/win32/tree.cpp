#include "kvshare/os/tree.h"

#include <utility>

#include "kvshare/os/win32/names.h"
#include "kvshare/os/win32/treereport.h"
#include "kvshare/os/win32/treewalk.h"

namespace kvshare::os {

namespace win32 {

TreeReport::TreeReport(std::string folder, const TreeFailure& failed)
    : folder_(std::move(folder)), failed_(failed) {
  const bool joins = folder_.empty() || folder_.ends_with('\\') || folder_.ends_with('/');
  if (!joins) folder_ += '\\';
}

void TreeReport::Fail(std::wstring_view path, SystemError error) const {
  if (failed_) Fail(path, MessageOf(error));
}

void TreeReport::Fail(std::wstring_view path, std::string_view reason) const {
  if (failed_) failed_(folder_ + NativeName(path), reason);
}

void TreeReport::Hand(const TreeReader& read, std::wstring_view level, std::wstring_view name,
                      bool isFolder) const {
  std::wstring path(level);
  path += name;
  const std::string native = NativeName(path);
  const std::string listed = Cp874Lossy(path);
  read({native, listed, isFolder});
}

namespace {

class Counter : public TreeVisitor {
 public:
  explicit Counter(const TreeReport& report) : report_(report) {}

  bool Enter(const TreeLevel& level) override {
    count_ += level.files.size();
    return true;
  }
  void Unreadable(const std::wstring& /*folder*/, const std::wstring& path,
                  SystemError error) override {
    report_.Fail(path, error);
  }
  std::uint64_t Count() const { return count_; }

 private:
  const TreeReport& report_;
  std::uint64_t count_ = 0;
};

class Lister : public TreeVisitor {
 public:
  Lister(const TreeReader& read, const TreeReport& report) : read_(read), report_(report) {}

  void Leave(const TreeLevel& level) override {
    for (const auto& file : level.files) {
      report_.Hand(read_, level.path, level.listing.Name(file), false);
    }
  }
  void Unreadable(const std::wstring& /*folder*/, const std::wstring& path,
                  SystemError error) override {
    report_.Fail(path, error);
  }

 private:
  const TreeReader& read_;
  const TreeReport& report_;
};

}  // namespace

}  // namespace win32

std::uint64_t CountTree(const TreeScope& scope, const TreeFailure& failed) {
  const win32::TreeReport report(scope.folder, failed);
  win32::Counter counter(report);
  win32::WalkTree(scope.folder, {.mask = Mask(scope.mask), .recurse = scope.recurse}, counter);
  return counter.Count();
}

void ListTree(const TreeScope& scope, const TreeReader& read, const TreeFailure& failed) {
  const win32::TreeReport report(scope.folder, failed);
  win32::Lister lister(read, report);
  const win32::TreeRules rules{
      .mask = Mask(scope.mask), .recurse = scope.recurse, .maskFolders = false};
  win32::WalkTree(scope.folder, rules, lister);
}

}  // namespace kvshare::os
