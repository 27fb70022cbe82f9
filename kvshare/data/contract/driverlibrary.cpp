#include "kvshare/data/contract/driverlibrary.h"

#include <algorithm>
#include <bit>
#include <iterator>

#include "kvshare/data/contract/errors.h"
#include "kvshare/data/contract/wiretexts.h"
#include "kvshare/rtl/filenames.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::data {

namespace {

struct LibraryRow {
  std::string_view customary, ours;
};

constexpr LibraryRow kLibraries[] = {
    {"dbexpmys.dll", "kvshare-mysql"},
};

constexpr std::string_view kClients[] = {
    "libmysql.dll", "libmariadb.dll", "fbclient.dll", "gds32.dll",
    "libpq.dll",    "sqlite3.dll",    "odbc32.dll",
};

// The files that a library was looked for as, in code page 874.
std::string LookedFor(std::string_view name) {
  std::string text;
  try {
    for (const std::string& file : os::SharedLibrary::Candidates(name)) {
      text.append("\r\n  ").append(ServerText(file));
    }
  } catch (const Exception&) {
    return {};  // a name that no file can have; the library's own error says so
  }
  return text.empty() ? text : "\r\nLooked for:" + text;
}

[[noreturn]] void RefuseLibrary(std::string_view shown, std::string_view name,
                                const os::SharedLibrary& library) {
  std::string text = "Unable to Load " + std::string(shown);
  text += LookedFor(name);
  if (!library.ErrorText().empty()) text += "\r\n" + ServerText(library.ErrorText());
  throw EDatabaseError(text);
}

}  // namespace

std::string_view DriverLibraryName(std::string_view libraryName) {
  const std::string_view file = ExtractFileName(libraryName);
  const auto* row = std::ranges::find_if(
      kLibraries, [file](const LibraryRow& r) { return SameText(r.customary, file); });
  return row == std::end(kLibraries) ? libraryName : row->ours;
}

bool IsCustomaryClient(std::string_view vendorLib) {
  const std::string_view file = ExtractFileName(vendorLib);
  return std::ranges::any_of(kClients,
                             [file](std::string_view client) { return SameText(client, file); });
}

DriverLibrary::DriverLibrary(std::string_view libraryName, std::string_view driverFunc,
                             std::string_view vendorLib) {
  if (libraryName.empty()) throw EDatabaseError("DLL/Shared Library Name not Set");
  if (!vendorLib.empty() && !IsCustomaryClient(vendorLib)) {
    vendor_ = os::SharedLibrary(vendorLib);
    if (!vendor_.Loaded()) RefuseLibrary(vendorLib, vendorLib, vendor_);
  }
  const std::string_view name = DriverLibraryName(libraryName);
  library_ = os::SharedLibrary(name);
  if (!library_.Loaded()) RefuseLibrary(libraryName, name, library_);
  void* entry = library_.Entry(driverFunc);
  if (entry == nullptr) {
    throw EDatabaseError("Unable to Find Procedure " + std::string(driverFunc) + "\r\nin " +
                         ServerText(library_.File()));
  }
  driver_ = std::bit_cast<DriverEntry>(entry)(kDriverContract);
  if (driver_ == nullptr) {
    throw EDatabaseError("Unable to Load " + std::string(libraryName) + "\r\n" +
                         ServerText(library_.File()) +
                         " was built for another version of this library.");
  }
}

}  // namespace kvshare::data
