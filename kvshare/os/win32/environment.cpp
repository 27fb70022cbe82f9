#include "kvshare/os/win32/environment.h"

#include "kvshare/os/win32/calltext.h"
#include "kvshare/os/win32/names.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::os::win32 {

std::string Variable(std::string_view name) {
  const std::wstring wideName = Wide(name);
  const auto read = [&wideName](wchar_t* text, DWORD size) {
    return GetEnvironmentVariableW(wideName.c_str(), text, size);
  };
  try {
    return Utf8(TextOfCall(read));
  } catch (const EConvertError&) {
    return {};
  }
}

}  // namespace kvshare::os::win32
