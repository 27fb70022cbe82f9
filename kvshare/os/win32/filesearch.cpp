#include "kvshare/os/filesearch.h"

#include <string>

#include "kvshare/os/files.h"
#include "kvshare/os/mask.h"
#include "kvshare/os/paths.h"
#include "kvshare/os/win32/errors.h"
#include "kvshare/os/win32/filefacts.h"
#include "kvshare/os/win32/listing.h"
#include "kvshare/os/win32/names.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::os {

namespace {

using win32::SystemError;

// The platform has one code for every folder that cannot be there.
int CodeOf(SystemError error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_DIRECTORY:  // a file
    case ERROR_INVALID_NAME:
    case ERROR_BAD_PATHNAME:
      return win32::kPathNotFound;
    default:
      return win32::PlatformCode(error);
  }
}

}  // namespace

struct FileSearch::State {
  State(std::string_view mask, int attributes) : mask_(mask), wanted_(attributes) {}

  int Open(const std::string& folder) {
    folder_ = win32::CallFolder(folder);
    const SystemError error = listing_.Read(folder_);
    return error == ERROR_SUCCESS ? 0 : CodeOf(error);
  }

  bool Next() {
    while (next_ < listing_.Entries().size()) {
      if (Take(listing_.Entries()[next_++])) return found_ = true;
    }
    if (!found_ && error_ == 0) error_ = win32::kNoMoreFiles;
    return false;
  }

  bool Take(const win32::FolderListing::Entry& entry) {
    const std::wstring_view native = listing_.Name(entry);
    const int attributes = win32::AttributesOf(native, entry.attributes);
    const bool isHidden = (attributes & faHidden) != 0 && !win32::IsDots(native);
    if (isHidden && (wanted_ & faHidden) == 0) return false;
    name_ = win32::Cp874Lossy(native);
    if (!mask_.Matches(name_)) return false;
    current_ = folder_;
    current_ += native;
    ownAttributes_ = entry.attributes;
    isLink_ = entry.isLink;
    // A link that leads nowhere is a file, whatever it was made for.
    isFolder_ = entry.IsFolder() && (!isLink_ || win32::IsFolder(current_));
    return !isFolder_ || (wanted_ & faDirectory) != 0;
  }

  // A link that leads nowhere has its own. So have `.` and `..`, which stand for no file in names
  // with the prefix of long ones.
  int Attributes() const {
    const std::wstring_view name = std::wstring_view(current_).substr(folder_.size());
    if (win32::IsDots(name)) return win32::AttributesOf(name, ownAttributes_);
    const win32::FileFacts facts = win32::LookAt(current_);
    if (facts.IsKnown()) return win32::AttributesOf(name, facts.attributes);
    const DWORD own = GetFileAttributesW(current_.c_str());
    return own != INVALID_FILE_ATTRIBUTES ? win32::AttributesOf(name, own) : -1;
  }

  Mask mask_;
  int wanted_;
  std::wstring folder_;
  win32::FolderListing listing_;
  std::size_t next_ = 0;
  std::string name_;
  std::wstring current_;
  DWORD ownAttributes_ = 0;
  bool isFolder_ = false;
  bool isLink_ = false;
  bool found_ = false;
  int error_ = 0;
};

FileSearch::FileSearch(std::string_view mask, int attributes) {
  const std::size_t separator = mask.find_last_of("\\/");
  const bool bareDrive = separator == std::string_view::npos && mask.size() >= 2 && mask[1] == ':';
  const std::size_t start = bareDrive ? 2 : separator + 1;  // npos + 1 is 0
  state_ = std::make_unique<State>(mask.substr(start), attributes);
  if (start == mask.size()) {
    state_->error_ = win32::kFileNotFound;
    return;
  }
  try {
    state_->error_ = state_->Open(NativePath(mask.substr(0, start)));
  } catch (const EInOutError& e) {
    state_->error_ = e.ErrorCode();
  } catch (const EConvertError&) {
    state_->error_ = win32::kPathNotFound;  // a current folder whose name is no text
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
  return state_->isFolder_;
}
bool FileSearch::IsLink() const {
  return state_->isLink_;
}
int FileSearch::Attributes() const {
  return state_->Attributes();
}
int FileSearch::Error() const {
  return state_->error_;
}

}  // namespace kvshare::os
