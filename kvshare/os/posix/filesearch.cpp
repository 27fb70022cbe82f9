#include "kvshare/os/filesearch.h"

#include <algorithm>
#include <string>

#include "kvshare/os/files.h"
#include "kvshare/os/mask.h"
#include "kvshare/os/paths.h"
#include "kvshare/os/posix/descriptor.h"
#include "kvshare/os/posix/errors.h"
#include "kvshare/os/posix/listing.h"
#include "kvshare/os/posix/names.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::os {

namespace {

bool IsHidden(std::string_view name) {
  return name.starts_with('.') && name != "." && name != "..";
}

}  // namespace

struct FileSearch::State {
  State(std::string_view mask, int attributes) : mask_(mask), wanted_(attributes) {}

  int Open(const std::string& path) {
    folder_ = posix::Descriptor(path.empty() ? "." : path.c_str(), O_RDONLY | O_DIRECTORY);
    const int error = folder_.IsOpen() ? listing_.Read(folder_.Value()) : errno;
    if (error == 0) return 0;
    const int code = posix::PlatformCode(error);
    return code == posix::kFileNotFound ? posix::kPathNotFound : code;
  }

  bool Next() {
    while (next_ < listing_.Entries().size()) {
      if (Take(listing_.Entries()[next_++])) return found_ = true;
    }
    if (!found_ && error_ == 0) error_ = posix::kNoMoreFiles;
    return false;
  }

  bool Take(const posix::FolderListing::Entry& entry) {
    const std::string_view native = listing_.Name(entry);
    if (IsHidden(native) && (wanted_ & faHidden) == 0) return false;
    name_.clear();
    posix::AppendListedName(name_, native);
    if (!mask_.Matches(name_)) return false;
    kind_ = posix::Resolve(folder_.Value(), listing_.ZName(entry), entry.kind);
    current_ = listing_.ZName(entry);
    return !kind_.isFolder || (wanted_ & faDirectory) != 0;
  }

  int Attributes() const {
    struct stat facts = {};
    // A link that leads nowhere has its own facts.
    if (::fstatat(folder_.Value(), current_, &facts, 0) != 0 &&
        ::fstatat(folder_.Value(), current_, &facts, AT_SYMLINK_NOFOLLOW) != 0) {
      return -1;
    }
    return posix::AttributesOf(current_, facts);
  }

  Mask mask_;
  int wanted_;
  posix::Descriptor folder_;
  posix::FolderListing listing_;
  std::size_t next_ = 0;
  std::string name_;
  posix::ResolvedKind kind_;
  const char* current_ = "";
  bool found_ = false;
  int error_ = 0;
};

FileSearch::FileSearch(std::string_view mask, int attributes) {
  const std::size_t separator = mask.find_last_of("\\/");
  const bool bareDrive = separator == std::string_view::npos && mask.size() >= 2 && mask[1] == ':';
  const std::size_t start = bareDrive ? 2 : separator + 1;  // npos + 1 is 0
  state_ = std::make_unique<State>(mask.substr(start), attributes);
  if (start == mask.size()) {
    state_->error_ = posix::kFileNotFound;
    return;
  }
  try {
    state_->error_ = state_->Open(NativePath(mask.substr(0, start)));
  } catch (const EInOutError& e) {
    state_->error_ = e.ErrorCode();
  }
}

FileSearch::~FileSearch() = default;
FileSearch::FileSearch(FileSearch&&) noexcept = default;
FileSearch& FileSearch::operator=(FileSearch&&) noexcept = default;

bool FileSearch::Next() {
  return state_->Next();
}
const std::string& FileSearch::Name() const {
  return state_->name_;
}
bool FileSearch::IsDirectory() const {
  return state_->kind_.isFolder;
}
bool FileSearch::IsLink() const {
  return state_->kind_.isLink;
}
int FileSearch::Attributes() const {
  return state_->Attributes();
}
int FileSearch::Error() const {
  return state_->error_;
}

}  // namespace kvshare::os
