// Libraries that are loaded by name while the program runs.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/export.h"

namespace kvshare::os {

// A loaded library; destroying it unloads it.
class KVSHARE_API SharedLibrary {
 public:
  SharedLibrary() = default;
  // `name` is a bare name as the suite's settings spell it (`KovraWin.DLL`) or a full name of the
  // interface. A bare name is looked for, without regard to letter case and to `.dll`, as
  // libNAME.so and NAME.so in the folders of Candidates; a name with `.so` in it (`libpq.so.5`) as
  // itself. Of a full name, libNAME.so and NAME.so beside the file count before the file. The first
  // file that is there decides, whether it can be loaded or not. Loaded() tells.
  explicit SharedLibrary(std::string_view name);
  ~SharedLibrary();
  SharedLibrary(SharedLibrary&& other) noexcept;
  SharedLibrary& operator=(SharedLibrary&& other) noexcept;

  bool Loaded() const { return handle_ != nullptr; }
  // 0; 1157 when no file was found; 193 when the file cannot be loaded: it is no library of this
  // machine, it is damaged, or something that it needs is missing.
  int ErrorCode() const { return error_; }
  const std::string& ErrorText() const { return errorText_; }  // the system's own, UTF-8

  // The system's own number of the library: the same as long as it is loaded, whoever loads it
  // besides; 0 when it is not.
  std::uintptr_t Handle() const { return reinterpret_cast<std::uintptr_t>(handle_); }

  // The file that was loaded, a system's name; "" when none was.
  std::string File() const;

  // nullptr when the library has no such entry itself: entries of the libraries that it needs do
  // not count.
  void* Entry(std::string_view name) const;

  // Every file that a name is looked for as, in order, letter case ignored; of a bare name in the
  // folders of KVSHARE_LIBRARY_PATH (separated by `:`), the running program's, the library's own
  // and its `kvshare` folder. The names without a folder at the end are for the system's own
  // search, which knows letter case: as spelled, then in lower case. System's names. Throws
  // EConvertError for a byte that stands for no letter, EInOutError for an unknown drive.
  static std::vector<std::string> Candidates(std::string_view name);

 private:
  void* handle_ = nullptr;
  int error_ = 0;
  std::string errorText_;
};

}  // namespace kvshare::os
