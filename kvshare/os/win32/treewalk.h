// The way through a tree by names, each folder held open while the walk is in it or below it.
//
// A folder that is held can be neither renamed, moved nor removed, nor can those above it: no walk
// is led to another place by a folder that becomes a link. So other programs must wait with such
// changes until the walk has left the folder. Links to folders (junctions, symbolic links, mounted
// disks) count as files and are not entered, so that there are no circles; the top alone may be
// one. The walk keeps its own stack instead of calling itself. A visitor sees each folder before
// its subfolders (Enter) and after them (Leave), and once more when it is no longer held (Left):
// copying works on the way down, deletion on the way up.
//
// A name has at most 32,767 letters: folders that lie deeper cannot be read. Each folder on the way
// takes one handle, of which a process may have millions.
// Internal header.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "kvshare/os/mask.h"
#include "kvshare/os/win32/filefacts.h"
#include "kvshare/os/win32/listing.h"

namespace kvshare::os::win32 {

// A folder that nobody can rename, move or remove as long as this lives.
struct HeldFolder {
  Handle handle{};
  FileIdentity identity{};
  SystemError error = 0;  // why it is not held
};

// `folder` is what CallFolder gives, or lies below it. Without `follow` a link is refused.
HeldFolder HoldFolder(const std::wstring& folder, bool follow);

// A folder that has been entered.
struct TreeLevel {
  std::wstring folder;  // its name for calls, with a final `\`
  FileIdentity identity{};
  std::wstring name;  // "" for the top
  std::wstring path;  // below the top, with a final `\`; "" for the top
  FolderListing listing;
  std::vector<FolderListing::Entry> files;  // links too
  std::vector<FolderListing::Entry> subfolders;
  std::size_t leftOut = 0;  // entries that are neither, besides `.` and `..`
};

class TreeVisitor {
 public:
  TreeVisitor() = default;
  virtual ~TreeVisitor() = default;
  TreeVisitor(const TreeVisitor&) = delete;
  TreeVisitor& operator=(const TreeVisitor&) = delete;

  // Before what lies below it; false leaves the folder out, and Leave is not called.
  virtual bool Enter(const TreeLevel& /*level*/) { return true; }
  // Behind all that lies below it.
  virtual void Leave(const TreeLevel& /*level*/) {}
  // The same, when it is no longer held and its parent still is. Not for the top.
  virtual void Left(const TreeLevel& /*level*/) {}
  // A folder that cannot be opened: its name for calls with a final `\`, "" for the top, and its
  // path below the top. Also one that was entered and could not be read to its end, then with "" in
  // the place of its name.
  virtual void Unreadable(const std::wstring& /*folder*/, const std::wstring& /*path*/,
                          SystemError /*error*/) {}
};

struct TreeRules {
  Mask mask;  // of the top folder's entries
  bool recurse = false;
  bool maskFolders = true;
};

// Walks the tree below a system's name. Nothing happens for a top that is no folder.
void WalkTree(const std::string& top, const TreeRules& rules, TreeVisitor& visitor);

}  // namespace kvshare::os::win32
