// Settings files as registry editors write them: for moving settings to another machine and back.
//
//   Version5   "Windows Registry Editor Version 5.00", UTF-16LE with a byte-order mark
//   RegEdit4   "REGEDIT4", code page 874
//
// Lines end in CR LF; LF alone is read too, and so is UTF-8 behind its byte-order mark or with Thai
// letters. A key may be followed by a comment; values under a deleted key are ignored; `\r` and
// `\n` in a text are line breaks. Bytes that stand for no letter are the letters that Windows makes
// of them (U+0081, U+F8C1, ...), so that any text survives.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/export.h"
#include "kvshare/os/registry/registry.h"

namespace kvshare::os {

enum class RegFormat : std::uint8_t { Version5, RegEdit4 };

// What a file does to one value: sets it, or deletes the one of that name.
struct RegChange {
  RegistryValue value;
  bool deleted = false;
  bool operator==(const RegChange&) const = default;
};

// What a file does to one key, in its order: deletes it with all below it, or makes it and changes
// its values.
struct RegSection {
  Hive hive = Hive::CurrentUser;
  std::string key;  // without a `\` at its ends
  bool deleted = false;
  std::vector<RegChange> changes;
  bool operator==(const RegSection&) const = default;
};

// Throws EConvertError `line N: reason` for what is no such file: another first line, another hive
// than HKEY_CURRENT_USER (HKCU) and HKEY_LOCAL_MACHINE (HKLM), a letter that code page 874 lacks
// (in a comment it may stand), a name beyond the registry's limits.
KVSHARE_API std::vector<RegSection> ParseRegFile(std::string_view bytes);

// Reads back as the same sections. Texts with control characters become hex(1), as editors need
// them. Throws EConvertError that names the key for a line break in a key's name: the format cannot
// hold it.
KVSHARE_API std::string WriteRegFile(const std::vector<RegSection>& sections, RegFormat format);

// Does all that the file says, or nothing. Throws EConvertError as ParseRegFile, ERegistryException
// when the store cannot be written.
KVSHARE_API void ImportRegFile(std::string_view bytes);

struct RegistryKey {
  Hive hive = Hive::CurrentUser;
  std::string path;
};

// The keys with all below them at one moment: parents first, keys by name, values as created. A
// missing key gives nothing.
KVSHARE_API std::vector<RegSection> CollectRegistry(const std::vector<RegistryKey>& keys);

// "HKEY_CURRENT_USER" or "HKEY_LOCAL_MACHINE".
KVSHARE_API std::string_view HiveName(Hive hive);
// By that name or by HKCU or HKLM, in any letter case.
KVSHARE_API bool FindHive(std::string_view name, Hive& hive);

}  // namespace kvshare::os
