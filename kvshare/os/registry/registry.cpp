#include "kvshare/os/registry/registry.h"

#include <algorithm>

#include "kvshare/os/registry/registrystore.h"
#include "kvshare/os/registry/storefile.h"
#include "kvshare/rtl/exceptions.h"

namespace kvshare::os {

namespace {

constexpr std::size_t kIntegerSize = 4;

[[noreturn]] void Throw(std::string_view before, std::string_view name, std::string_view after) {
  throw ERegistryException(std::string(before).append(name).append(after));
}

[[noreturn]] void ThrowInvalidType(std::string_view name) {
  Throw("Invalid data type for '", name, "'");
}

[[noreturn]] void ThrowNotSet(std::string_view name) {
  Throw("Failed to set data for '", name, "'");
}

// What `read` makes of the store, and `otherwise` where there is none or it cannot be used.
template <typename Result, typename Read>
Result ReadOr(Result otherwise, Read read) {
  try {
    if (const store::Lease lease = store::Lease::ForReading()) return read(*lease);
  } catch (const StoreError&) {
    return otherwise;  // as if absent; RegistryTrouble tells why
  }
  return otherwise;
}

// One change, on the disk when it returns true.
template <typename Work>
bool Changed(Work work) {
  try {
    store::Change change;
    const bool done = work(change);
    if (done) change.Commit();
    return done;
  } catch (const StoreError&) {
    return false;
  }
}

// A hive's root is there before the store is.
bool RootIsReadable() {
  try {
    store::Lease::ForReading();
    return true;
  } catch (const StoreError&) {
    return false;
  }
}

bool MakeKey(Hive hive, std::string_view path) {
  return Changed([&](store::Change& change) { return change->EnsureKey(hive, path) != 0; });
}

void Replace(TStrings& list, const std::vector<std::string>& names) {
  list.Clear();
  for (const std::string& name : names) list.Add(name);
}

std::int32_t IntegerOf(std::string_view bytes) {
  std::uint32_t value = 0;
  for (std::size_t i = 0; i < kIntegerSize; ++i) {
    value |= std::uint32_t{static_cast<unsigned char>(bytes[i])} << (8 * i);
  }
  return static_cast<std::int32_t>(value);
}

bool IsText(const RegistryValue& value) {
  return value.kind == ValueKind::Text || value.kind == ValueKind::ExpandText;
}

bool IsInteger(const RegistryValue& value) {
  return value.kind == ValueKind::Integer && value.data.size() == kIntegerSize;
}

std::optional<RegistryValue> ValueUnder(Hive hive, std::string_view cleanPath,
                                        std::string_view name) {
  return ReadOr(std::optional<RegistryValue>(), [&](store::Session& session) {
    return session.Value(store::FoldedKey(hive, cleanPath), name);
  });
}

std::optional<RegistryValue> ValueOf(Hive hive, std::string_view key, std::string_view name) {
  const auto path = store::CleanPath({}, key);
  return path ? ValueUnder(hive, *path, name) : std::nullopt;
}

void RequireSound(RegistryUse use) {
  const std::string path = store::StoreFile();
  if (const store::Lease lease = store::Lease::ForReading()) lease->RequireSound();
  if (use == RegistryUse::Writing) store::RequireWritable(path);
}

}  // namespace

bool TRegistry::OpenKey(std::string_view key, bool canCreate) {
  auto path = store::CleanPath(current_, key);
  if (!path) return false;
  const bool usable = path->empty() ? RootIsReadable() : KeyExists(key);
  if (!usable && (path->empty() || !canCreate || !MakeKey(hive_, *path))) return false;
  current_ = std::move(*path);
  return true;
}

bool TRegistry::OpenKeyReadOnly(std::string_view key) {
  return OpenKey(key, false);
}

void TRegistry::CreateKey(std::string_view key) {
  const auto path = store::CleanPath(current_, key);
  if (!path || !(KeyExists(key) || MakeKey(hive_, *path))) Throw("Failed to create key ", key, "");
}

bool TRegistry::DeleteKey(std::string_view key) {
  const auto path = store::CleanPath(current_, key);
  if (!path || path->empty() || !KeyExists(key)) return false;
  return Changed(
      [&](store::Change& change) { return change->DeleteKey(store::FoldedKey(hive_, *path)); });
}

bool TRegistry::DeleteValue(std::string_view name) {
  if (!ValueExists(name)) return false;
  return Changed([&](store::Change& change) {
    return change->DeleteValue(store::FoldedKey(hive_, current_), name);
  });
}

bool TRegistry::KeyExists(std::string_view key) const {
  const auto path = store::CleanPath(current_, key);
  if (!path) return false;
  return path->empty() || ReadOr(false, [&](store::Session& session) {
           return session.HasKey(store::FoldedKey(hive_, *path));
         });
}

bool TRegistry::ValueExists(std::string_view name) const {
  return ReadValue(name).has_value();
}

bool TRegistry::HasSubKeys() const {
  return ReadOr(false, [&](store::Session& session) {
    return session.HasSubKeys(store::FoldedKey(hive_, current_));
  });
}

void TRegistry::GetValueNames(TStrings& names) const {
  Replace(names, ReadOr(std::vector<std::string>(), [&](store::Session& session) {
            return session.ValueNames(store::FoldedKey(hive_, current_));
          }));
}

void TRegistry::GetKeyNames(TStrings& names) const {
  Replace(names, ReadOr(std::vector<std::string>(), [&](store::Session& session) {
            return session.KeyNames(store::FoldedKey(hive_, current_));
          }));
}

std::string TRegistry::ReadString(std::string_view name) const {
  auto value = ReadValue(name);
  if (!value) return {};
  if (!IsText(*value)) ThrowInvalidType(name);
  return std::move(value->data);
}

std::int32_t TRegistry::ReadInteger(std::string_view name) const {
  const auto value = ReadValue(name);
  if (!value) Throw("Failed to get data for '", name, "'");
  if (!IsInteger(*value)) ThrowInvalidType(name);
  return IntegerOf(value->data);
}

void TRegistry::WriteString(std::string_view name, std::string_view text) {
  WriteValue({std::string(name), ValueKind::Text, std::string(text)});
}

void TRegistry::WriteInteger(std::string_view name, std::int32_t value) {
  WriteValue({std::string(name), ValueKind::Integer,
              store::IntegerBytes(static_cast<std::uint32_t>(value))});
}

std::optional<RegistryValue> TRegistry::ReadValue(std::string_view name) const {
  return ValueUnder(hive_, current_, name);
}

std::vector<RegistryValue> TRegistry::ReadValues() const {
  return ReadOr(std::vector<RegistryValue>(), [&](store::Session& session) {
    return session.Values(store::FoldedKey(hive_, current_));
  });
}

void TRegistry::WriteValue(const RegistryValue& value) {
  const bool written =
      value.name.size() <= store::kLongestValueName && Changed([&](store::Change& change) {
        change->Write(change->EnsureKey(hive_, current_), value);
        return true;
      });
  if (!written) ThrowNotSet(value.name);
}

std::optional<std::string> RegistryText(Hive hive, std::string_view key, std::string_view name) {
  auto value = ValueOf(hive, key, name);
  if (!value || !IsText(*value)) return std::nullopt;
  return std::move(value->data);
}

std::optional<std::int32_t> RegistryInteger(Hive hive, std::string_view key,
                                            std::string_view name) {
  const auto value = ValueOf(hive, key, name);
  if (!value || !IsInteger(*value)) return std::nullopt;
  return IntegerOf(value->data);
}

void InOneRegistryTransaction(const std::function<void()>& changes) {
  try {
    store::Change change;
    changes();
    change.Commit();
  } catch (const StoreError& e) {
    throw ERegistryException(e.what());
  }
}

std::string RegistryFile() {
  try {
    return store::StoreFile();
  } catch (const StoreError&) {
    return {};
  }
}

std::string RegistryTrouble(RegistryUse use) {
  try {
    RequireSound(use);
    return {};
  } catch (const StoreError& e) {
    const std::string file = RegistryFile();
    return file.empty() ? e.what() : file + ": " + e.what();
  }
}

}  // namespace kvshare::os
