// The registry: typed values under keys, for the user and for the machine.
//
// One store for each HomeFolder(), in the file registry.db, kept by SQLite. Any number of processes
// read and write it at once; each call sees what others have written before it. A write is on the
// disk when the call returns, and a crash or a full disk at any moment loses nothing that was
// there. Keys and value names ignore the case of a..z and keep it. Names and texts are code page
// 874 bytes; any byte is kept, but `\` separates keys.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kvshare/export.h"
#include "kvshare/rtl/stringlist.h"

namespace kvshare::os {

enum class Hive : std::uint8_t { CurrentUser, LocalMachine };

// The kind of a value; the numbers are the platform's. Only Text and Integer are made by programs;
// the others arrive with imported settings and are kept, byte for byte.
enum class ValueKind : std::uint8_t {
  None = 0,
  Text = 1,
  ExpandText = 2,
  Binary = 3,
  Integer = 4,  // 32 bits
  MultiText = 7,
  Integer64 = 11,
};

// A value as the store keeps it: Text and ExpandText as code page 874 bytes without an end mark,
// MultiText as such bytes with theirs, an integer as four bytes, little-endian, all others as the
// platform's bytes.
struct RegistryValue {
  std::string name;
  ValueKind kind = ValueKind::Text;
  std::string data;
  bool operator==(const RegistryValue&) const = default;
};

// A key of one hive. Names begin at the hive's root, with or without a `\` in front; "" is the
// root. While no key is open every call is about the root. A `\` at the end and a second one in a
// row count for nothing. Limits are the platform's: a key's name has up to 255 bytes, 512 keys lie
// in each other, a value's name has up to 16,383 bytes; what exceeds them does not exist and cannot
// be made. A write into a key that was deleted meanwhile makes it again.
//
// Reads behave as if nothing were stored where the store cannot be used; RegistryTrouble tells why.
class KVSHARE_API TRegistry {
 public:
  explicit TRegistry(Hive rootKey = Hive::CurrentUser) : hive_(rootKey) {}

  // Make `key` the current key: "\A" from the root, "A" from the current one. False, and the
  // current key stays, when it is missing (and `canCreate` is false) or the store cannot be used.
  // They never throw.
  bool OpenKey(std::string_view key, bool canCreate);
  bool OpenKeyReadOnly(std::string_view key);
  void CloseKey() { current_.clear(); }
  const std::string& CurrentPath() const { return current_; }

  // With its parents; an existing one is fine. Throws ERegistryException `Failed to create key %s`.
  void CreateKey(std::string_view key);
  // With all below it; false when it is absent or the store cannot be written.
  bool DeleteKey(std::string_view key);
  bool DeleteValue(std::string_view name);

  bool KeyExists(std::string_view key) const;
  bool ValueExists(std::string_view name) const;
  bool HasSubKeys() const;

  // Clear the list; values in the order in which they were created, keys by name without case.
  void GetValueNames(TStrings& names) const;
  void GetKeyNames(TStrings& names) const;

  // "" when the value is absent. Throws ERegistryException `Invalid data type for '%s'` for a value
  // that is neither Text nor ExpandText.
  std::string ReadString(std::string_view name) const;
  // Throws ERegistryException `Failed to get data for '%s'` when the value is absent, `Invalid data
  // type for '%s'` when it is no integer.
  std::int32_t ReadInteger(std::string_view name) const;

  // Replace kind and data, keep the place. Throw ERegistryException `Failed to set data for '%s'`.
  void WriteString(std::string_view name, std::string_view text);
  void WriteInteger(std::string_view name, std::int32_t value);

  // Values of any kind, for programs that look after the store; in the order of GetValueNames.
  std::optional<RegistryValue> ReadValue(std::string_view name) const;
  std::vector<RegistryValue> ReadValues() const;
  void WriteValue(const RegistryValue& value);

 private:
  Hive hive_;
  std::string current_;  // without a `\` in front or behind
};

// A value without opening its key first: one read of the store. None where the value or its key is
// missing or the value is of another kind.
KVSHARE_API std::optional<std::string> RegistryText(Hive hive, std::string_view key,
                                                    std::string_view name);
KVSHARE_API std::optional<std::int32_t> RegistryInteger(Hive hive, std::string_view key,
                                                        std::string_view name);

// Many changes as one: all of them are on the disk when `changes` returns, or none when it throws
// or the process dies. TRegistry inside it takes part; other processes' writes wait so long, up to
// ten seconds. One inside another is a part of that, and is undone alone when it throws. Throws
// what `changes` throws, and ERegistryException with the reason when the store cannot be written;
// where a failed write undid all before it, as a full disk does, also when `changes` has caught its
// exception.
KVSHARE_API void InOneRegistryTransaction(const std::function<void()>& changes);

// The store's file, a system's name in UTF-8; "" where there is no home folder.
KVSHARE_API std::string RegistryFile();

enum class RegistryUse : std::uint8_t { Reading, Writing };

// What keeps the store from being used so, for the person who must mend it: the file and the reason
// in UTF-8; "" when nothing does. Reads the whole store, looking for damage.
KVSHARE_API std::string RegistryTrouble(RegistryUse use = RegistryUse::Writing);

}  // namespace kvshare::os
