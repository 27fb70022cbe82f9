// The drives of the interface's names: the system's own, or those of the home folder where
// KVSHARE_HOME names one.
// Internal header.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/os/drives.h"

namespace kvshare::os::win32 {

struct DriveTable {
  std::vector<Drive> drives;  // letters first and in order, shares behind them
  std::vector<std::string> errors;

  const Drive* Find(std::string_view name) const;  // letter case ignored
};

// The table of the bytes of a drives.ini: `C:` lies in `home` and `Z:` in `systemRoot`, the root of
// the drive that holds it. Both are plain names (systemnames.h), `systemRoot` without a final `\`.
DriveTable ParseDriveTable(std::string_view bytes, std::string_view home,
                           std::string_view systemRoot);

// Where `C:` lies in a home folder unless drives.ini moves it. It is made when it is first used.
std::string RootOfDriveC(std::string_view home);

// Whether drives and shares are the system's own: KVSHARE_HOME is not set.
bool DrivesAreTheSystems();

// The table in force. The home folder's drives.ini is read each time: it is there for tests, whose
// changes count at once. The system's own shares are not listed: to find them would ask the
// network.
DriveTable CurrentDriveTable();

// What a name of the interface begins with: `X:` or `\\host\share`, else "".
std::string_view DriveOf(std::string_view name);

// The system's folder of what DriveOf gives, without a final `\`; nothing where there is no such
// drive. Of the system's own shares none is looked for: every name that a share can have has one.
std::optional<std::string> RootOfDrive(std::string_view drive);

}  // namespace kvshare::os::win32
