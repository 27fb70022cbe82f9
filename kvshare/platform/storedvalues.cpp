#include "kvshare/platform/storedvalues.h"

#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

std::string StoredTextOr(os::Hive hive, std::string_view key, std::string_view name,
                         std::string_view defaultValue) {
  std::optional<std::string> text = os::RegistryText(hive, key, name);
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
