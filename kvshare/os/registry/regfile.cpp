// Settings files and the store.
#include "kvshare/os/registry/regfile.h"

#include "kvshare/os/registry/registrystore.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::os {

namespace {

struct HiveRow {
  Hive hive;
  std::string_view name, shortName;
};
constexpr HiveRow kHives[] = {{Hive::CurrentUser, "HKEY_CURRENT_USER", "HKCU"},
                              {Hive::LocalMachine, "HKEY_LOCAL_MACHINE", "HKLM"}};
static_assert(static_cast<int>(kHives[0].hive) == 0 && static_cast<int>(kHives[1].hive) == 1);

void Apply(const RegSection& section) {
  TRegistry registry(section.hive);
  const std::string key = "\\" + section.key;
  if (section.deleted) {
    if (registry.KeyExists(key) && !registry.DeleteKey(key)) {
      throw ERegistryException("Failed to delete key " + section.key);
    }
    return;
  }
  registry.CreateKey(key);
  registry.OpenKey(key, true);
  for (const RegChange& change : section.changes) {
    const std::string& name = change.value.name;
    if (!change.deleted) {
      registry.WriteValue(change.value);
    } else if (registry.ValueExists(name) && !registry.DeleteValue(name)) {
      throw ERegistryException("Failed to delete value '" + name + "'");
    }
  }
}

// Keys lie in each other 512 deep at most.
// NOLINTNEXTLINE(misc-no-recursion)
void Collect(store::Session& session, const RegistryKey& key, std::vector<RegSection>& sections) {
  const std::string folded = store::FoldedKey(key.hive, key.path);
  RegSection& section = sections.emplace_back();
  section.hive = key.hive;
  section.key = key.path;
  for (RegistryValue& value : session.Values(folded)) {
    section.changes.push_back({std::move(value), false});
  }
  for (const std::string& name : session.KeyNames(folded)) {
    Collect(session, {key.hive, key.path.empty() ? name : key.path + '\\' + name}, sections);
  }
}

}  // namespace

std::string_view HiveName(Hive hive) {
  return kHives[static_cast<int>(hive)].name;
}

bool FindHive(std::string_view name, Hive& hive) {
  for (const HiveRow& row : kHives) {
    if (!SameText(row.name, name) && !SameText(row.shortName, name)) continue;
    hive = row.hive;
    return true;
  }
  return false;
}

void ImportRegFile(std::string_view bytes) {
  const std::vector<RegSection> sections = ParseRegFile(bytes);
  InOneRegistryTransaction([&sections] {
    for (const RegSection& section : sections) Apply(section);
  });
}

std::vector<RegSection> CollectRegistry(const std::vector<RegistryKey>& keys) {
  std::vector<RegSection> sections;
  try {
    const store::View view;
    if (!view) return sections;
    for (const RegistryKey& key : keys) {
      const auto path = store::CleanPath("", key.path);
      if (!path || !view->HasKey(store::FoldedKey(key.hive, *path))) continue;
      Collect(*view, {key.hive, *path}, sections);
    }
  } catch (const StoreError& e) {
    throw ERegistryException(e.what());
  }
  return sections;
}

}  // namespace kvshare::os
