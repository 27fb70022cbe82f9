#include "kvshare/os/loadedlibrary.h"

#include "kvshare/os/win32/calltext.h"
#include "kvshare/os/win32/systemnames.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::os {

namespace {

// "" for a name that is no text.
std::string FileOfModule(HMODULE module) {
  const auto read = [module](wchar_t* text, DWORD size) {
    return GetModuleFileNameW(module, text, size);
  };
  try {
    return win32::NativeOf(win32::TextOfCall(read));
  } catch (const EConvertError&) {
    return {};
  }
}

}  // namespace

LoadedLibrary LibraryOfAddress(const void* address) {
  constexpr DWORD kByAddress =
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
  HMODULE module = nullptr;
  if (GetModuleHandleExW(kByAddress, static_cast<const wchar_t*>(address), &module) == 0) return {};
  return {module, FileOfModule(module)};
}

}  // namespace kvshare::os
