// A tree deleted from its ends upwards.
#include <algorithm>
#include <vector>

#include "kvshare/os/tree.h"
#include "kvshare/os/win32/entryops.h"
#include "kvshare/os/win32/patience.h"
#include "kvshare/os/win32/treereport.h"
#include "kvshare/os/win32/treewalk.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::os {

namespace win32 {

namespace {

constexpr std::string_view kNotEmptyReason = "the folder is not empty";

// Of a name with a final `\` a link's target would be removed. A root keeps its own.
std::wstring NameOfFolder(std::wstring folder) {
  const bool isRoot = folder.ends_with(L":\\");
  if (!isRoot && folder.ends_with(L'\\')) folder.pop_back();
  return folder;
}

bool HoldsNothing(const std::wstring& folder) {
  FolderListing listing;
  const auto isDots = [&listing](const auto& entry) { return IsDots(listing.Name(entry)); };
  return listing.Read(folder) == ERROR_SUCCESS && std::ranges::all_of(listing.Entries(), isDots);
}

// Whether all that is in a folder has been deleted and waits for somebody who has it open.
bool HoldsOnlyWhatGoes(const std::wstring& folder) {
  FolderListing listing;
  const auto goes = [&](const auto& entry) {
    const std::wstring_view name = listing.Name(entry);
    return IsDots(name) || IsGoing(folder + std::wstring(name));
  };
  return listing.Read(folder) == ERROR_SUCCESS && std::ranges::all_of(listing.Entries(), goes);
}

// Another walk may still hold the folder, and will leave it when it finds nothing there.
SystemError RemoveLeftFolder(const std::wstring& folder) {
  constexpr DWORD kPatience = 2000;  // milliseconds
  const auto passes = [&folder](SystemError error) {
    return IsInUse(error) || (error == ERROR_DIR_NOT_EMPTY && HoldsOnlyWhatGoes(folder));
  };
  return Patiently(kPatience, passes, [&folder] { return RemoveFolder(NameOfFolder(folder)); });
}

// Of a link the link goes, once what it leads to is empty.
SystemError RemoveTop(const std::string& native) {
  std::wstring folder;
  try {
    folder = CallFolder(native);
  } catch (const EConvertError&) {
    return ERROR_PATH_NOT_FOUND;  // a current folder whose name is no text
  }
  const DWORD attributes = GetFileAttributesW(NameOfFolder(folder).c_str());
  const bool mayBeLink =
      attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
  if (mayBeLink && !HoldsNothing(folder)) return ERROR_DIR_NOT_EMPTY;
  return RemoveLeftFolder(folder);
}

[[noreturn]] void ThrowCodeOf(SystemError error) {
  ThrowInOut(error == ERROR_DIRECTORY ? kPathNotFound : PlatformCode(error));
}

SystemError RemoveFileOrLink(const std::wstring& name, const FolderListing::Entry& entry) {
  constexpr DWORD kPatience = 100;  // milliseconds, for each file that a program has open
  return Patiently(kPatience, IsInUse,
                   [&] { return entry.IsFolder() ? RemoveFolder(name) : RemoveFile(name); });
}

class Deleter : public TreeVisitor {
 public:
  explicit Deleter(const TreeReport& report) : report_(report) {}

  bool Enter(const TreeLevel& level) override {
    entered_ = true;
    for (const auto& file : level.files) {
      const std::wstring name(level.listing.Name(file));
      const SystemError error = RemoveFileOrLink(level.folder + name, file);
      if (error == ERROR_SUCCESS) {
        ++deleted_.files;
      } else if (!TellsMissing(error)) {
        report_.Fail(level.path + name, error);
      }
    }
    return true;
  }

  void Left(const TreeLevel& level) override {
    Removed(RemoveLeftFolder(level.folder), level.path);
  }

  // It may be empty all the same.
  void Unreadable(const std::wstring& folder, const std::wstring& path,
                  SystemError error) override {
    if (TellsMissing(error) && entered_) return;
    if (folder.empty()) return report_.Fail(path, error);
    Removed(RemoveLeftFolder(folder), path);
  }

  // What somebody else has removed meanwhile is gone, as it should be.
  void Removed(SystemError error, const std::wstring& path) {
    if (TellsMissing(error) && entered_) return;
    if (error != ERROR_SUCCESS) {
      report_.Fail(path, error);
      ThrowCodeOf(error);
    }
    ++deleted_.folders;
  }

  const TreeDeletion& Deleted() const { return deleted_; }

 private:
  const TreeReport& report_;
  TreeDeletion deleted_;
  bool entered_ = false;
};

class DeletionLister : public TreeVisitor {
 public:
  DeletionLister(const TreeReader& read, const TreeReport& report) : read_(read), report_(report) {}

  bool Enter(const TreeLevel& level) override {
    for (const auto& file : level.files) {
      report_.Hand(read_, level.path, level.listing.Name(file), false);
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
    std::wstring_view parent = level.path;
    parent.remove_suffix(level.name.size() + 1);
    report_.Hand(read_, parent, level.name, true);
  }

  void Unreadable(const std::wstring& /*folder*/, const std::wstring& path,
                  SystemError error) override {
    report_.Fail(path, error);
    if (!keeps_.empty()) keeps_.back() = true;
  }

  bool TopGoes() const { return topGoes_; }

 private:
  const TreeReader& read_;
  const TreeReport& report_;
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

  void Left(const TreeLevel& level) override {
    if (lastKept_ != 0) {
      ++kept_.back();
    } else {
      Remove(level.folder);
    }
  }

  void Unreadable(const std::wstring& folder, const std::wstring& /*path*/,
                  SystemError /*error*/) override {
    if (!folder.empty()) Remove(folder);
  }

  bool IsTopEmpty() const { return lastKept_ == 0; }

 private:
  static void Remove(const std::wstring& folder) {
    const SystemError error = RemoveLeftFolder(folder);
    if (error != ERROR_SUCCESS && !TellsMissing(error)) ThrowCodeOf(error);
  }

  std::vector<std::size_t> kept_;
  std::size_t lastKept_ = 0;
};

TreeRules DeletionRules(const TreeScope& scope) {
  return {.mask = Mask(scope.mask), .recurse = scope.recurse};
}

}  // namespace

}  // namespace win32

TreeDeletion DeleteTree(const TreeScope& scope, const TreeFailure& failed) {
  const win32::TreeReport report(scope.folder, failed);
  win32::Deleter deleter(report);
  win32::WalkTree(scope.folder, win32::DeletionRules(scope), deleter);
  if (scope.recurse) deleter.Removed(win32::RemoveTop(scope.folder), L"");
  return deleter.Deleted();
}

void ListDeletion(const TreeScope& scope, const TreeReader& read, const TreeFailure& failed) {
  const win32::TreeReport report(scope.folder, failed);
  win32::DeletionLister lister(read, report);
  win32::WalkTree(scope.folder, win32::DeletionRules(scope), lister);
  if (!scope.recurse) return;
  if (lister.TopGoes()) {
    read({"", "", true});
  } else {
    report.Fail(L"", win32::kNotEmptyReason);
  }
}

bool RemoveEmptyTree(const std::string& folder, bool recurse) {
  win32::EmptyRemover remover;
  const win32::TreeRules rules{.mask = Mask("*.*"), .recurse = recurse};
  win32::WalkTree(folder, rules, remover);
  if (!remover.IsTopEmpty()) return false;
  const win32::SystemError error = win32::RemoveTop(folder);
  if (error != ERROR_SUCCESS) win32::ThrowCodeOf(error);
  return true;
}

}  // namespace kvshare::os
