// A file under way to another one's place. Names are those of the wide calls.
// Internal header.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "kvshare/os/win32/filefacts.h"

namespace kvshare::os::win32 {

// The file in the place that a new one is to take.
struct EarlierFile {
  // ERROR_FILE_NOT_FOUND where there is none, else why it may not be replaced: a folder, a device,
  // read-only, no right to write it, a link that leads nowhere (ERROR_PATH_NOT_FOUND), in use.
  SystemError error = 0;
  std::wstring name;  // as the disk spells it, behind all links
  FileFacts facts;
  std::vector<std::byte> rights;  // who may do what with it; empty where the disk keeps no rights
};

EarlierFile FindEarlier(const std::wstring& callName);

// A file of this process alone, in the folder of its target, removed again unless it takes the
// target's place. All calls give 0 or the system's error.
//
// A file that another program keeps open cannot be replaced, not even where that program allows its
// deletion. What programs open for a moment is waited for, up to two seconds.
class TemporaryFile {
 public:
  explicit TemporaryFile(std::wstring target) : target_(std::move(target)) {}
  ~TemporaryFile();
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  // With the rights that the folder gives its files; of the attributes those count that a file has
  // from its beginning (hidden, of the system, encrypted).
  SystemError Create(DWORD attributes);
  // With the attributes and rights of an earlier file, and what its folder has for every file. Its
  // owner becomes the writer; other streams than the file itself are lost.
  SystemError CreateLike(const EarlierFile& earlier);

  SystemError Write(std::string_view bytes) const;
  // The time of the last write, which later writes change again, and all attributes.
  SystemError SetFacts(const FILETIME& written, DWORD attributes) const;

  SystemError TakePlace();  // flushes, closes, renames over what stands there
  // Closes and renames; ERROR_ALREADY_EXISTS where something stands.
  SystemError TakeFreePlace();

 private:
  SystemError Open(DWORD attributes, SECURITY_ATTRIBUTES* rights);

  std::wstring target_;
  std::wstring name_;
  Handle file_;
};

}  // namespace kvshare::os::win32
