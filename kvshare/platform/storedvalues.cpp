#include "kvshare/platform/storedvalues.h"

#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

namespace {

template <typename Value, Value (os::TRegistry::*Read)(std::string_view) const>
std::optional<Value> Stored(os::Hive hive, std::string_view key, std::string_view name) {
  try {
    os::TRegistry registry(hive);
    if (!registry.OpenKeyReadOnly(key) || !registry.ValueExists(name)) return std::nullopt;
    return (registry.*Read)(name);
  } catch (const Exception&) {
    return std::nullopt;
  }
}

}  // namespace

std::optional<std::string> StoredText(os::Hive hive, std::string_view key, std::string_view name) {
  return Stored<std::string, &os::TRegistry::ReadString>(hive, key, name);
}

std::optional<std::int32_t> StoredInteger(os::Hive hive, std::string_view key,
                                          std::string_view name) {
  return Stored<std::int32_t, &os::TRegistry::ReadInteger>(hive, key, name);
}

std::string StoredTextOr(os::Hive hive, std::string_view key, std::string_view name,
                         std::string_view defaultValue) {
  std::optional<std::string> text = StoredText(hive, key, name);
  if (!text || Trim(*text).empty()) return std::string(defaultValue);
  return *std::move(text);
}

void StoreUnder(os::Hive hive, std::string_view key,
                const std::function<void(os::TRegistry&)>& write) {
  try {
    os::InOneRegistryTransaction([&] {
      os::TRegistry registry(hive);
      registry.CreateKey(key);
      if (registry.OpenKey(key, false)) write(registry);
    });
  } catch (const Exception&) {
    return;  // the caller's contract: what cannot be stored is not
  }
}

void StoreText(os::Hive hive, std::string_view key, std::string_view name, std::string_view value) {
  StoreUnder(hive, key, [&](os::TRegistry& registry) { registry.WriteString(name, value); });
}

}  // namespace kvshare
