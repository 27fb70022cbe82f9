// Names as the system tells them, and their parts.
// Internal header.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kvshare::os::win32 {

// A system's name with `\` alone as separator and without the prefix `\\?\` or `\\?\UNC`; the
// prefix of a name that has no other form (`\\?\Volume{...}`) stays.
std::string PlainName(std::string_view nativePath);

// The same of what a call gave. Throws EConvertError for half a surrogate pair.
std::string NativeOf(std::wstring_view systemName);

// What a plain name begins with: `X:` or `\\host\share`; "" for one that is not absolute. `X:x`,
// which depends on a current folder, is not.
std::string_view RootOf(std::string_view plainName);

// Whether it names one of the system's devices or a volume without a letter (`\\.\x`, `\\?\x`):
// such names are none of the interface.
bool IsDeviceName(std::string_view plainName);

// What follows the folder `root` in `path`, from its `\` on; "" for the folder itself. Nothing when
// the folder does not hold it. Letter case is ignored, as the system ignores it in names. Both are
// plain names, `root` without a final `\`. Throws EConvertError for what is no UTF-8.
std::optional<std::string> RestBelow(std::string_view root, std::string_view path);

// The process's current folder, plain. Throws EInOutError and EConvertError.
std::string NativeCurrentFolder();

// The full name of a system's name against the current folder, plain. Throws EInOutError and
// EConvertError.
std::string FullNativeName(std::string_view nativePath);

}  // namespace kvshare::os::win32
