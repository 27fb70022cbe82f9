// The one way from rtl to a disk. The names are the interface's (`C:\Apps\x.ini`); the layer that
// knows the operating system supplies these functions.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/export.h"

namespace kvshare::inline rtl {

// All bytes of a file. Throws EInOutError with the system's message and the platform's code.
KVSHARE_API std::string ReadFileBytes(std::string_view fileName);

// Replaces the file by `bytes`, whole or not at all. Throws EInOutError likewise.
KVSHARE_API void WriteFileBytes(std::string_view fileName, std::string_view bytes);

KVSHARE_API bool FileExists(std::string_view fileName);  // false for a folder

}  // namespace kvshare::inline rtl
