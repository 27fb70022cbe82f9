// The drives as they stand in drives.ini.
// Internal header.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/export.h"
#include "kvshare/os/drives.h"

namespace kvshare::os::posix {

struct DriveTable {
  std::vector<Drive> drives;  // letters first and in order, shares behind them
  std::vector<std::string> errors;

  const Drive* Find(std::string_view name) const;  // letter case ignored
};

// The table of a file's bytes; `C:` lies in `home`, and there is none where that is "".
KVSHARE_API DriveTable ParseDriveTable(std::string_view bytes, std::string_view home);

// That of the drives.ini in force; costs one look at the file while that does not change.
std::shared_ptr<const DriveTable> CurrentDriveTable();

// What a name of the interface begins with: `X:` or `\\host\share`, else "".
KVSHARE_API std::string_view DriveOf(std::string_view name);

}  // namespace kvshare::os::posix
