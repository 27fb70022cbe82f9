// The text of an initialisation file: how it is read, and edits that keep every other byte.
// Programs use TIniFile.
//
// Lines end at LF, CR LF or CR. A header is `[name]` after blanks, and what follows `]` is ignored; a
// comment begins with `;` after blanks; a key is a line with a `=`. The first section of
// a name and the first key of a name in it count; both ignore case.
// Internal header.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "kvshare/export.h"

namespace kvshare::ini {

struct Line {
  enum class Kind : std::uint8_t { Other, Header, Key };
  Kind kind = Kind::Other;
  std::string_view whole;  // with its line end
  std::string_view name;   // of a header or a key
  std::string_view value;  // of a key, without blanks and tabs around it, quotes still on
};

// Walks the lines of a file's bytes, which outlive it.
class KVSHARE_API Reader {
 public:
  explicit Reader(std::string_view bytes) : rest_(bytes) {}

  bool Next(Line& line);                 // false at the end
  bool NextInSection(Line& line);        // false at the next header too, which it consumes
  bool Enter(std::string_view section);  // goes behind the first such header, if there is one
  std::size_t Left() const { return rest_.size(); }  // bytes not walked yet

 private:
  bool SkipToHeader();

  std::string_view rest_;  // begins at a line's first byte, or at the `[` of a header
};

// A key's value without one surrounding pair of equal quotes.
KVSHARE_API std::string_view Unquote(std::string_view value);

// The unquoted value; nothing when the section or the key is missing.
KVSHARE_API std::optional<std::string_view> FindValue(std::string_view bytes,
                                                      std::string_view section,
                                                      std::string_view key);

// Whether a file can hold these so that they read back as given: no line break in any, no `]` in
// the section, no `=` in the key, no blanks at the ends of either, no key like a comment or header.
KVSHARE_API bool CanHold(std::string_view section, std::string_view key, std::string_view value);

// Replaces the value, or adds the key behind the last line of its section that is not empty, or
// adds the section at the end; new lines end as the first one of the file does, CR LF in a new
// file. A value that would not read back as given (blanks or quotes at its ends) is put in quotes.
// Needs CanHold(section, key, value).
KVSHARE_API void SetValue(std::string& bytes, std::string_view section, std::string_view key,
                          std::string_view value);

// Removes the key's line, or the section up to the next header. False when there is none.
KVSHARE_API bool DeleteKey(std::string& bytes, std::string_view section, std::string_view key);
KVSHARE_API bool EraseSection(std::string& bytes, std::string_view section);

}  // namespace kvshare::ini
