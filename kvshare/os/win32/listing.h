// The entries of one folder. Names are those of the wide calls.
// Internal header.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/os/win32/errors.h"
#include "kvshare/os/win32/handle.h"

namespace kvshare::os::win32 {

// The full name of a system's folder ("" is the current one) with a final `\` and the prefix that
// lifts the limit of 260 letters: the names of its entries can be put behind it, also those that
// the system would take for a device or shorten. Throws EInOutError (code 3) for a name that no
// folder can have, EConvertError where the current folder's name is no text.
std::wstring CallFolder(const std::string& native);

// Read whole before anything is done with an entry: a folder that changes under its reader may skip
// entries or show its own new ones.
class FolderListing {
 public:
  struct Entry {
    std::size_t at;
    std::size_t size;
    DWORD attributes;
    bool isLink;  // see IsLink of filefacts.h

    // A link to a folder is a folder, also where it leads nowhere.
    bool IsFolder() const { return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }
  };

  // Of what CallFolder gives, in the file system's order; `.` and `..` are among them except in a
  // root. 0 or the system's error; what was read before it stays.
  SystemError Read(const std::wstring& folder);

  const std::vector<Entry>& Entries() const { return entries_; }
  std::wstring_view Name(const Entry& entry) const {
    return std::wstring_view(names_).substr(entry.at, entry.size);
  }

 private:
  void Add(const WIN32_FIND_DATAW& found);

  std::wstring names_;
  std::vector<Entry> entries_;
};

// Whether it is the folder itself or the one above it.
constexpr bool IsDots(std::wstring_view name) {
  return name == L"." || name == L"..";
}

// The name of an entry in UTF-8. Half a surrogate pair, which a name can have, becomes U+FFFD.
std::string NativeName(std::wstring_view name);

}  // namespace kvshare::os::win32
