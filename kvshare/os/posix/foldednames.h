// Names that differ in letter case from those on the disk.
// Internal header.
#pragma once

#include <compare>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace kvshare::os::posix {

// Names in an order in which those that differ in the case of a..z alone are neighbours, by bytes.
struct FoldedOrder {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const;
};
using FoldedNames = std::set<std::string, FoldedOrder>;

// The first by bytes of the names that are `name` without regard to the case of a..z, nullptr when
// there is none.
const std::string* FindFolded(const FoldedNames& names, std::string_view name);

// The same among the entries of a folder ("" for the current one). A folder that cannot be read has
// none. A large folder is not read again for each name as long as the system tells what changes in
// it, so that many thousand new files can be made one after the other.
std::optional<std::string> FindInFolder(const std::string& folder, std::string_view name);

}  // namespace kvshare::os::posix
