// The way through a tree: each folder is opened from its parent, never by its whole name.
//
// So a folder that is renamed or replaced by a link while the walk is below it does not lead the
// walk to another place, and a path may be longer than the system takes. The walk keeps its own
// stack instead of calling itself, and compares identities against circles of links. A visitor sees
// each folder before its subfolders (Enter) and after them (Leave), and its parent once more when
// it is done (Left): copying works on the way down, deletion on the way up.
// Internal header.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "kvshare/os/mask.h"
#include "kvshare/os/posix/descriptor.h"
#include "kvshare/os/posix/listing.h"

namespace kvshare::os::posix {

// The folders from a top one down to where one stands. Only the top and the last few are open; the
// others are opened again on the way back, so that no depth runs out of descriptors.
class FolderStack {
 public:
  void Push(Descriptor folder, const Identity& identity, std::string name);
  void Pop();
  int Last() const { return places_.back().folder.Value(); }  // -1: it could not be found again
  bool Holds(const Identity& identity) const;

 private:
  struct Place {
    Descriptor folder;
    Identity identity;
    std::string name;  // in the one before it
  };

  Descriptor FindAgain(std::size_t place) const;

  std::vector<Place> places_;
};

// A folder that has been entered.
struct TreeLevel {
  int folder = -1;
  int parent = -1;
  mode_t mode = 0;
  Identity identity;
  std::string name;  // "" for the top
  std::string path;  // below the top, with a final `/`; "" for the top
  FolderListing listing;
  std::vector<FolderListing::Entry> files;  // links too where they are not followed
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
  // The same, standing in its parent again. Not for the top.
  virtual void Left(int /*parent*/, const TreeLevel& /*level*/) {}
  // A folder that cannot be opened or read: its name in its parent, and its path.
  virtual void Unreadable(int /*parent*/, const std::string& /*name*/, const std::string& /*path*/,
                          int /*error*/) {}
};

struct TreeRules {
  Mask mask;  // of the top folder's entries
  bool recurse = false;
  bool maskFolders = true;
  bool followLinks = true;  // else a link is a file
};

// Walks the tree. Nothing happens for a top that is no folder. A link that leads back to a folder
// on the way to it is not entered.
void WalkTree(const std::string& top, const TreeRules& rules, TreeVisitor& visitor);

}  // namespace kvshare::os::posix
