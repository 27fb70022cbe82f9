// Names and failures of a walk, for who asked for it.
// Internal header.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/os/tree.h"
#include "kvshare/os/win32/treewalk.h"

namespace kvshare::os::win32 {

class TreeReport {
 public:
  TreeReport(std::string folder, const TreeFailure& failed);

  void Fail(std::wstring_view path, SystemError error) const;  // below the folder
  void Fail(std::wstring_view path, std::string_view reason) const;

  // Hands an entry to its reader: the path of its level and its own name.
  void Hand(const TreeReader& read, std::wstring_view level, std::wstring_view name,
            bool isFolder) const;

 private:
  std::string folder_;
  const TreeFailure& failed_;
};

}  // namespace kvshare::os::win32
