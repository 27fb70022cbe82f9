// A tree copied over another.
#include <set>
#include <utility>
#include <vector>

#include "kvshare/os/tree.h"
#include "kvshare/os/win32/copyfile.h"
#include "kvshare/os/win32/entryops.h"
#include "kvshare/os/win32/treereport.h"
#include "kvshare/os/win32/treewalk.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::os {

namespace win32 {

namespace {

constexpr std::string_view kLinkReason = "a link to a folder is not copied";

// Names that the system takes for one another are one.
struct FoldedOrder {
  bool operator()(const std::wstring& a, const std::wstring& b) const {
    return CompareStringOrdinal(a.data(), static_cast<int>(a.size()), b.data(),
                                static_cast<int>(b.size()), TRUE) == CSTR_LESS_THAN;
  }
};

class Copier : public TreeVisitor {
 public:
  Copier(const std::string& target, const TreeReport& report) : target_(target), report_(report) {}

  bool Enter(const TreeLevel& level) override {
    if (IsSameFile(level.identity, top_)) return false;  // the target, inside the source
    const SystemError error = level.path.empty() ? OpenTop() : EnterBelow(level);
    if (error != ERROR_SUCCESS) return report_.Fail(level.path, error), false;
    for (const auto& file : level.files) Copy(level, file);
    return true;
  }

  void Left(const TreeLevel& /*level*/) override { targets_.pop_back(); }

  void Unreadable(const std::wstring& /*folder*/, const std::wstring& path,
                  SystemError error) override {
    report_.Fail(path, error);
  }

  std::uint64_t Copied() const { return copied_; }

 private:
  // A folder on the way to where files are copied now, and the names that were copied into it.
  struct Target {
    std::wstring folder;
    HeldFolder held;
    std::set<std::wstring, FoldedOrder> taken;
  };

  SystemError OpenTop() {
    try {
      return Push(CallFolder(target_));
    } catch (const EInOutError&) {
      return ERROR_PATH_NOT_FOUND;
    } catch (const EConvertError&) {
      return ERROR_PATH_NOT_FOUND;
    }
  }

  SystemError EnterBelow(const TreeLevel& level) {
    if (!Take(level.name)) return ERROR_ALREADY_EXISTS;
    const std::wstring folder = targets_.back().folder + level.name;
    const SystemError error = MakeFolder(folder);
    if (error != ERROR_SUCCESS && error != ERROR_ALREADY_EXISTS) return error;
    return Push(folder + L'\\');
  }

  SystemError Push(std::wstring folder) {
    HeldFolder held = HoldFolder(folder, true);
    if (held.error != ERROR_SUCCESS) return held.error;
    if (targets_.empty()) top_ = held.identity;
    targets_.push_back({std::move(folder), std::move(held), {}});
    return ERROR_SUCCESS;
  }

  // False where another one of the source has taken the name already: a folder whose names differ
  // by case alone, as other systems' disks have them, cannot be copied whole.
  bool Take(const std::wstring& name) { return targets_.back().taken.insert(name).second; }

  void Copy(const TreeLevel& level, const FolderListing::Entry& file) {
    const std::wstring name(level.listing.Name(file));
    if (file.IsFolder()) return report_.Fail(level.path + name, kLinkReason);
    const SystemError error = Take(name)
                                  ? CopyWhole(level.folder + name, targets_.back().folder + name)
                                  : SystemError{ERROR_ALREADY_EXISTS};
    if (error != ERROR_SUCCESS) return report_.Fail(level.path + name, error);
    ++copied_;
  }

  const std::string& target_;
  const TreeReport& report_;
  std::vector<Target> targets_;
  FileIdentity top_;
  std::uint64_t copied_ = 0;
};

}  // namespace

}  // namespace win32

std::uint64_t CopyTree(const TreeScope& scope, const std::string& target,
                       const TreeFailure& failed) {
  const win32::TreeReport report(scope.folder, failed);
  win32::Copier copier(target, report);
  win32::WalkTree(scope.folder, {.mask = Mask(scope.mask), .recurse = scope.recurse}, copier);
  return copier.Copied();
}

}  // namespace kvshare::os
