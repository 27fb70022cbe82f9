// A file under way to another one's place.
// Internal header.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/os/posix/calls.h"
#include "kvshare/os/posix/descriptor.h"

namespace kvshare::os::posix {

// What the links of a path lead to, whether it exists or not. Throws EInOutError (code 3) where
// they lead round.
std::string LinkTarget(std::string path);

// 0, or why the file of these facts may not be replaced: a folder, a device, no right to write it.
// A rename asks for no such right.
int CannotReplace(int folder, const char* path, const struct stat& earlier);

// A file of this process alone, in the folder of `target`, removed again unless it takes the
// target's place. All calls give 0 or the system's error.
class TemporaryFile {
 public:
  // `target` is taken from the folder `folder`, an open one or AT_FDCWD.
  TemporaryFile(int folder, std::string_view target) : folder_(folder), target_(target) {}
  ~TemporaryFile() {
    if (!path_.empty()) ::unlinkat(folder_, path_.c_str(), 0);
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  int Create(mode_t mode);
  int SetMode(mode_t mode) const;
  int Write(std::string_view bytes, const Calls& calls) const;
  int TakePlace(const Calls& calls = {});  // flushes, closes, renames
  int TakeFreePlace();                     // closes and renames; EEXIST where something stands
  int Handle() const { return file_.Value(); }

 private:
  int folder_;
  std::string target_;
  std::string path_;
  Descriptor file_;
};

}  // namespace kvshare::os::posix
