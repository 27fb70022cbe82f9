// Initialisation files: [section], key=value, ; comment.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/rtl/stringlist.h"

namespace kvshare::inline rtl {

// What a file held at one moment, for several questions at the cost of one reading. Sections and
// keys ignore case, the first of several counts. Blanks and tabs around keys and values are
// dropped, then one pair of equal quotes around a value. A lone CR ends a line too. There is no
// byte-order mark handling: three such bytes spoil a header on line 1.
class KVSHARE_API TIniContents {
 public:
  // A missing file, and one that cannot be read, are empty.
  explicit TIniContents(std::string_view fileName);

  // At most 2047 bytes. A key without a value gives '', a missing key the default without its
  // trailing blanks.
  std::string ReadString(std::string_view section, std::string_view key,
                         std::string_view fallback) const;
  // A leading 0x counts as `$`; what is no integer gives the default.
  int ReadInteger(std::string_view section, std::string_view key, int fallback) const;
  // ReadInteger <> 0; so `true` and `yes` give the default.
  bool ReadBool(std::string_view section, std::string_view key, bool fallback) const;

  // Each clears the list first. Lists end where 16384 bytes of names are full; the name that passes
  // that end is cut.
  void ReadSections(TStrings& sections) const;
  void ReadSection(std::string_view section, TStrings& keys) const;
  // `key=value` for each key of ReadSection, with ReadString's value of that key.
  void ReadSectionValues(std::string_view section, TStrings& lines) const;
  bool SectionExists(std::string_view section) const;
  bool ValueExists(std::string_view section, std::string_view key) const;

 private:
  std::string bytes_;
};

// The file itself: every call reads it afresh, with TIniContents' answers.
class KVSHARE_API TIniFile {
 public:
  explicit TIniFile(std::string_view fileName) : fileName_(fileName) {}

  const std::string& FileName() const { return fileName_; }

  std::string ReadString(std::string_view section, std::string_view key,
                         std::string_view fallback) const;
  int ReadInteger(std::string_view section, std::string_view key, int fallback) const;
  bool ReadBool(std::string_view section, std::string_view key, bool fallback) const;
  void ReadSections(TStrings& sections) const;
  void ReadSection(std::string_view section, TStrings& keys) const;
  void ReadSectionValues(std::string_view section, TStrings& lines) const;
  bool SectionExists(std::string_view section) const;
  bool ValueExists(std::string_view section, std::string_view key) const;

  // Keep every other byte of the file, comments and order included; the file is replaced whole or
  // not at all. Throw EIniFileException `Unable to write to %s`. A section or key that cannot be
  // read back as given (`]`, `=`, line breaks, blanks at an end, a leading `;`) and a value with a
  // line break are refused with the same error. A value with blanks or quotes at its ends is
  // written in quotes, so that it reads back as given. Deleting what is missing does nothing.
  void WriteString(std::string_view section, std::string_view key, std::string_view value);
  void WriteInteger(std::string_view section, std::string_view key, int value);
  void WriteBool(std::string_view section, std::string_view key, bool value);  // 1 and 0
  void DeleteKey(std::string_view section, std::string_view key);
  void EraseSection(std::string_view section);

 private:
  std::string fileName_;
};

}  // namespace kvshare::inline rtl
