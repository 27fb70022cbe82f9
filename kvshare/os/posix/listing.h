// The entries of one folder.
// Internal header.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kvshare::os::posix {

enum class EntryKind : std::uint8_t { File, Folder, Link, Unknown };

// Read whole before anything is done with an entry: a folder that changes under its reader may skip
// entries or show its own new ones.
class FolderListing {
 public:
  struct Entry {
    std::size_t at;
    std::uint32_t size;
    EntryKind kind;
  };

  // Of an open folder, in the file system's order, `.` and `..` among them. 0 or the system's
  // error; what was read before it stays.
  int Read(int folder);

  const std::vector<Entry>& Entries() const { return entries_; }
  std::string_view Name(const Entry& entry) const { return {ZName(entry), entry.size}; }
  const char* ZName(const Entry& entry) const { return names_.data() + entry.at; }

 private:
  std::string names_;  // a zero byte behind each
  std::vector<Entry> entries_;
};

// The kind of what a link or an unknown entry is: a link to a folder is a folder.
struct ResolvedKind {
  bool isFolder = false;
  bool isLink = false;
};
ResolvedKind Resolve(int folder, const char* name, EntryKind kind);

// Appends a system's name as it is listed: code page 874, with `?` for each letter that it lacks,
// for a byte that is no UTF-8 and for a backslash, which would separate.
void AppendListedName(std::string& out, std::string_view native);

}  // namespace kvshare::os::posix
