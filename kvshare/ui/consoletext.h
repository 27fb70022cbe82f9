// Texts of anybody, a server among them, for a terminal: no byte of them steers it. Code page 874
// in and out.
// Internal header.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/export.h"

namespace kvshare {

// Lines end with LF alone; tabs stay; another control character becomes a byte that stands for no
// letter.
KVSHARE_API void AppendLines(std::string& out, std::string_view text);

// The same in one line: line ends and tabs are blanks.
KVSHARE_API std::string OneLine(std::string_view text);

// The lines of a cell in a table, none wider than `width` columns, which is at least 1: longer ones
// go on in the next, and a letter keeps the marks that combine with it. At least one line.
std::vector<std::string> CellLines(std::string_view text, std::size_t width);

}  // namespace kvshare
