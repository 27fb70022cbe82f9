// Names and failures of a walk, for who asked for it.
// Internal header.
#pragma once

#include <string>

#include "kvshare/os/posix/treewalk.h"
#include "kvshare/os/tree.h"

namespace kvshare::os::posix {

class TreeReport {
 public:
  TreeReport(std::string folder, const TreeFailure& failed);

  void Fail(const std::string& path, int error) const;  // below the folder
  void Fail(const std::string& path, std::string_view reason) const;

  // Hands an entry of a level to its reader. Entries of one level come one after the other.
  void Hand(const TreeReader& read, const TreeLevel& level, std::string_view name, bool isFolder);

 private:
  std::string folder_;
  const TreeFailure& failed_;
  std::string native_, listed_;
};

}  // namespace kvshare::os::posix
