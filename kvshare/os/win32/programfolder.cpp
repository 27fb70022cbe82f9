#include "kvshare/os/win32/programfolder.h"

#include "kvshare/os/win32/calltext.h"
#include "kvshare/os/win32/names.h"
#include "kvshare/os/win32/systemnames.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::os::win32 {

std::string RunningProgramFile() {
  const auto read = [](wchar_t* text, DWORD size) {
    return GetModuleFileNameW(nullptr, text, size);
  };
  try {
    return NativeOf(TextOfCall(read));
  } catch (const EConvertError&) {
    return {};
  }
}

std::string RunningProgramFolder() {
  const std::string file = RunningProgramFile();
  const std::size_t end = file.rfind('\\');
  return end != std::string::npos ? file.substr(0, end) : std::string();
}

std::string FileIgnoringCase(const std::string& folder, const std::string& name) {
  std::string file = folder.empty() || folder.ends_with('\\') ? folder : folder + '\\';
  file += name;
  try {
    const DWORD attributes = GetFileAttributesW(CallName(file).c_str());
    const bool isFile =
        attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
    return isFile ? file : std::string();
  } catch (const EInOutError&) {
    return {};  // a name that no file can have
  }
}

}  // namespace kvshare::os::win32
