// Names on their way to the system's wide calls. A system's name is UTF-8 everywhere else.
// Internal header.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kvshare::os::win32 {

// Throw EConvertError for what is no UTF-8, and for half a surrogate pair.
std::wstring Wide(std::string_view utf8);
std::string Utf8(std::wstring_view wide);

// A letter that code page 874 lacks becomes `?`.
std::string Cp874Lossy(std::wstring_view wide);

// The name that a call takes for a system's name: above 240 letters absolute, with the prefix that
// lifts the limit of 260. Throws EInOutError (code 3) for a zero byte and for what is no UTF-8.
std::wstring CallName(std::string_view nativePath);

// The same for a name of the interface: CallName(NativePath(name)). Throws EInOutError.
std::wstring CallNameOf(std::string_view windowsPath);
// Nothing for a name that no file can have.
std::optional<std::wstring> CallNameOrNone(std::string_view windowsPath);

}  // namespace kvshare::os::win32
