// Whole folders by the system's names, which may have letters that the interface's lack. For
// the library and its command; programs use platform/files.h, which tells the rules.
//
// Memory grows with the entries of one folder and the depth, descriptors with neither. A folder
// that changes meanwhile is no error: what has gone is left out.
// Internal header.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "kvshare/export.h"

namespace kvshare::os {

struct TreeScope {
  std::string folder;        // the system's name, with or without a final `/`
  std::string mask = "*.*";  // code page 874, for the entries of the folder itself
  bool recurse = false;
};

// Told of each file or folder that could not be read, copied or deleted: the system's name, and the
// reason in the system's words.
using TreeFailure = std::function<void(const std::string& path, std::string_view reason)>;

// The names of an entry below the folder: the system's, and the interface's with `?` for letters
// that it lacks.
struct TreeEntry {
  std::string_view native;
  std::string_view listed;
  bool isFolder = false;
};
using TreeReader = std::function<void(const TreeEntry&)>;

KVSHARE_API std::uint64_t CountTree(const TreeScope& scope, const TreeFailure& failed = {});

// The files of a subfolder come before its parent's; the mask applies to files only.
KVSHARE_API void ListTree(const TreeScope& scope, const TreeReader& read,
                          const TreeFailure& failed = {});

// Into a folder that exists. A file that differs in case alone from one that was there before
// replaces it; of several such files the first does, and the others have names of their own. A file
// appears when it is whole; a process that is killed may leave a `.kvshare-*.tmp`. A target inside
// the source is not copied into itself. The number of files copied.
KVSHARE_API std::uint64_t CopyTree(const TreeScope& scope, const std::string& target,
                                   const TreeFailure& failed = {});

struct TreeDeletion {
  std::uint64_t files = 0;
  std::uint64_t folders = 0;
};

// Throws EInOutError for the first folder that cannot be removed, after calling `failed` for it.
KVSHARE_API TreeDeletion DeleteTree(const TreeScope& scope, const TreeFailure& failed = {});

// What DeleteTree would delete, in its order; calls `failed` for folders that would not be empty.
KVSHARE_API void ListDeletion(const TreeScope& scope, const TreeReader& read,
                              const TreeFailure& failed = {});

// Whether the folder could be removed, see RemoveEmptyDir. Links count as files. Throws
// EInOutError.
KVSHARE_API bool RemoveEmptyTree(const std::string& folder, bool recurse);

}  // namespace kvshare::os
