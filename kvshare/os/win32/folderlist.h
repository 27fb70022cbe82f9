// Lists of folders in environment variables.
// Internal header.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kvshare::os::win32 {

// The folders of a list as PATH has it, separated by `;`. Quotes hide a `;` and do not count
// themselves. An empty folder would be the current one, where anybody may have put a file: it is
// left out.
inline std::vector<std::string> FoldersOf(std::string_view list) {
  std::vector<std::string> folders(1);
  bool quoted = false;
  for (const char c : list) {
    if (c == '"') {
      quoted = !quoted;
    } else if (c == ';' && !quoted) {
      folders.emplace_back();
    } else {
      folders.back() += c;
    }
  }
  std::erase(folders, "");
  return folders;
}

}  // namespace kvshare::os::win32
