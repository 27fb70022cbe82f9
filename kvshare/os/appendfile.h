// Text files at whose ends several processes write at once.
#pragma once

#include <memory>
#include <string_view>

#include "kvshare/export.h"

namespace kvshare::os {

// Puts `bytes` at the end of a file in one piece: what several processes append at once neither
// mixes nor tears, and of an append that fails (a full disk) nothing stays. A missing file is
// created with the folders that lead to it. Where a file ends in Ctrl-Z bytes, at most 128 of them
// are written over. Throws EInOutError with the platform's code and message.
KVSHARE_API void AppendToFile(std::string_view name, std::string_view bytes);

// Makes the appends of all others to a file that exists wait while the object lives, but nobody
// waits longer than two seconds; the file may be renamed meanwhile. Two of them exclude each other,
// and so do one of them and an append of the same thread. A missing file, one that may not be
// opened and a file system without locks are not held; nothing throws.
class KVSHARE_API FileHold {
 public:
  explicit FileHold(std::string_view name);
  ~FileHold();
  FileHold(const FileHold&) = delete;
  FileHold& operator=(const FileHold&) = delete;

 private:
  struct Handle;
  std::unique_ptr<Handle> handle_;
};

}  // namespace kvshare::os
