// The system calls of which each can fail after a file has been begun. A test passes calls that
// fail.
// Internal header.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <cstddef>
#include <cstdio>
#include <string>
#include <string_view>

#include "kvshare/export.h"

namespace kvshare::os::posix {

struct Calls {
  ssize_t (*write)(int, const void*, std::size_t) = ::write;
  int (*sync)(int) = ::fsync;
  int (*rename)(int, const char*, int, const char*) = ::renameat;
};

// Replaces the file at the system's name `path` by `bytes`, whole or not at all: a temporary file
// in the same folder, flushed, takes its name. A symbolic link stays and its target is replaced; an
// earlier file's permissions stay, its owner becomes the writer. Throws EInOutError.
KVSHARE_API void ReplaceFile(const std::string& path, std::string_view bytes,
                             const Calls& calls = {});

}  // namespace kvshare::os::posix
