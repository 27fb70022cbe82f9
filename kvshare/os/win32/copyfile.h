// One file's way to another place. Names are those of the wide calls.
// Internal header.
#pragma once

#include <cstdint>
#include <string>

#include "kvshare/os/win32/errors.h"

namespace kvshare::os::win32 {

enum class Place : std::uint8_t { Free, Any };

// Copies bytes, time and the read-only attribute of a file; a new one is hidden, of the system and
// encrypted as its source is. A new file appears when it is whole; an earlier one is replaced by a
// whole one that was flushed, and keeps its rights and other attributes. Links are followed.
// Refused: what is no file, a file onto itself, a target that is read-only, a link that leads
// nowhere; with Place::Free every target that is there. 0 or the system's error.
SystemError CopyWhole(const std::wstring& from, const std::wstring& to, Place place = Place::Any);

}  // namespace kvshare::os::win32
