// The drives and network shares of the interface's file names, and where each lies on this machine.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/export.h"

namespace kvshare::os {

// The numbers are the platform's.
enum class DriveKind : std::uint8_t {
  Unknown = 0,
  NoRoot = 1,  // no such drive, or its folder is missing (C: is made when it is first used)
  Removable = 2,
  Fixed = 3,
  Remote = 4,
  CdRom = 5,
  RamDisk = 6,
};

struct Drive {
  std::string name;  // `C:`, or `\\host\share`
  std::string root;  // the system's folder, without a final `/` ("" for the root itself)
  DriveKind kind = DriveKind::Fixed;
};

// Every drive, letters first and in order, shares behind them. `C:` is drive_c in HomeFolder() and
// `Z:` the system's root, both fixed; the file drives.ini in HomeFolder() adds others and may move
// these two. One section a drive, the system's own bytes in Path:
//   [D:]                      [\\server\ledger]
//   Path=/srv/ledger          Path=/mnt/ledger
//   Kind=fixed                Kind=remote
// Kind is fixed (default), removable, remote, cdrom or ram; a share's default is remote. A section
// without an absolute Path, with another kind or with a name that is no drive is left out here;
// DriveTableErrors names it.
KVSHARE_API std::vector<Drive> Drives();

// What is wrong with drives.ini, one line each, UTF-8; empty when nothing is.
KVSHARE_API std::vector<std::string> DriveTableErrors();

// The kind of the drive of a name that begins with `X:` or `\\host\share` (letter case ignored):
// NoRoot when the table lacks it or its folder does not exist.
KVSHARE_API DriveKind KindOfDrive(std::string_view name);

// The bytes that the drive holds in all; -1 when it is not ready. 1 is A:, 2 is B:, 0 the drive of
// the current folder.
KVSHARE_API std::int64_t DiskSize(int drive);

}  // namespace kvshare::os
