// Byte strings: positions count from 1, a "blank" is byte 32, Thai has no letter case.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/export.h"

namespace kvshare::inline rtl {

// Without the bytes <= 32 (NUL, TAB, CR and LF included) at the ends. The views lie inside `text`.
KVSHARE_API std::string_view Trim(std::string_view text);
KVSHARE_API std::string_view TrimLeft(std::string_view text);
KVSHARE_API std::string_view TrimRight(std::string_view text);

constexpr char UpCase(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
}
constexpr char LowCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

// Letters a..z and A..Z only. In code page 874 the Ansi forms are the same.
KVSHARE_API std::string UpperCase(std::string_view text);
KVSHARE_API std::string LowerCase(std::string_view text);
KVSHARE_API std::string AnsiUpperCase(std::string_view text);
KVSHARE_API std::string AnsiLowerCase(std::string_view text);

// The first place of `sub` in `text`, 0 when absent or empty.
KVSHARE_API int Pos(std::string_view sub, std::string_view text);

// `count` bytes from `index`. index < 1 counts as 1 with count unchanged; index past the end or
// count <= 0 gives the empty view; count is clamped.
KVSHARE_API std::string_view Copy(std::string_view text, int index, int count);

// Removes `count` bytes from `index`. index < 1, index past the end or count <= 0: nothing.
KVSHARE_API void Delete(std::string& text, int index, int count);

// Puts `part` before `index`. index < 1 counts as 1; index past the end appends.
KVSHARE_API void Insert(std::string_view part, std::string& text, int index);

// Order of the bytes with a..z folded to A..Z: negative, 0 or positive.
KVSHARE_API int CompareText(std::string_view a, std::string_view b);
KVSHARE_API bool SameText(std::string_view a, std::string_view b);
// The locale's comparison; in code page 874 the same as CompareText, and unsigned bytes.
KVSHARE_API int AnsiCompareText(std::string_view a, std::string_view b);
KVSHARE_API int AnsiCompareStr(std::string_view a, std::string_view b);

// Left to right; replaced text is not searched again. An empty `old` changes nothing.
struct TReplaceFlags {
  bool ReplaceAll = false;
  bool IgnoreCase = false;
};
KVSHARE_API std::string StringReplace(std::string_view text, std::string_view old,
                                      std::string_view with, TReplaceFlags flags = {});

// In apostrophes, inner ones doubled: 'a''b'.
KVSHARE_API std::string QuotedStr(std::string_view text);

// A lone CR and a lone LF become CR LF.
KVSHARE_API std::string AdjustLineBreaks(std::string_view text);

// `count` copies; empty for count <= 0.
KVSHARE_API std::string StringOfChar(char c, int count);

}  // namespace kvshare::inline rtl
