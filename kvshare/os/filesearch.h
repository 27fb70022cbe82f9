// The entries of a folder that match a mask.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "kvshare/export.h"

namespace kvshare::os {

// Whether a name (without folder) matches a mask of `*` and `?`, letter case ignored, as the
// platform's searches match: `*.*` and `*` match every name; `*.` matches names without a point;
// `?` stands for one letter, or for none where the name or the part before its point ends.
KVSHARE_API bool MatchesMask(std::string_view name, std::string_view mask);

// Walks the entries in the file system's order. One folder is read; its files are only looked at
// where the folder does not tell their kind.
class KVSHARE_API FileSearch {
 public:
  // `mask` is folder + mask: `C:\Data\*.txt`. `attributes` are bits of files.h: plain, read-only
  // and archive files always match; hidden and directory entries only with their bit. `.` and `..`
  // come with directories. A folder that cannot be read or does not exist has no entries; Error()
  // tells.
  FileSearch(std::string_view mask, int attributes);
  ~FileSearch();
  FileSearch(FileSearch&&) noexcept;
  FileSearch& operator=(FileSearch&&) noexcept;

  // False at the end.
  bool Next();

  // The entry that Next found. A letter of a name that code page 874 lacks stands as `?`; such a
  // file can be listed and counted, but not opened by this name.
  const std::string& Name() const;
  bool IsDirectory() const;  // a link to a folder is a folder
  bool IsLink() const;
  int Attributes() const;  // looks at the file

  // 0; 2, 3 or 5 when the folder could not be read; 18 when nothing matches.
  int Error() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace kvshare::os
