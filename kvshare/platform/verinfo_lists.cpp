// Lists of texts in the settings store.
#include "kvshare/platform/storedvalues.h"
#include "kvshare/platform/verinfo.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

namespace {

constexpr int kLongestList = 10;

// The names of the key's values in the order in which they were written; empty without the key.
TStringList ValueNames(std::string_view key) {
  TStringList names;
  os::TRegistry registry;
  if (registry.OpenKeyReadOnly(key)) registry.GetValueNames(names);
  return names;
}

// Calls `take` with name and text of each value of the key that is a text. A store that fails on
// the way ends it.
template <typename Take>
void ForEachText(std::string_view key, Take take) {
  try {
    for (const std::string& name : ValueNames(key)) {
      if (const auto text = os::RegistryText(os::Hive::CurrentUser, key, name)) take(name, *text);
    }
  } catch (const ERegistryException&) {
    return;
  }
}

// Replaces all that the key holds by what `write` writes.
template <typename Write>
void Rewrite(const std::string& key, Write write) {
  StoreUnder(os::Hive::CurrentUser, "", [&](os::TRegistry& root) {
    root.DeleteKey(key);
    root.CreateKey(key);
    if (root.OpenKey(key, false)) write(root);
  });
}

}  // namespace

void TKovraRegistry::ReadRegistryStringList(std::string_view root, std::string_view section,
                                            std::string_view name, TStrings& list) const {
  const auto addNew = [&list](const std::string&, const std::string& text) {
    if (!Trim(text).empty() && list.IndexOf(text) < 0) list.Add(text);
  };
  ForEachText(ListKey(root, section, name, "Findkey"), addNew);
}

void TKovraRegistry::WriteRegistryStringList(std::string_view root, std::string_view section,
                                             std::string_view name, const TStrings& list) const {
  Rewrite(ListKey(root, section, name, "Findkey"), [&list](os::TRegistry& key) {
    for (int i = 0; i < list.Count() && i < kLongestList; ++i) {
      key.WriteString(Format("Value_%d", {i}), list[i]);
    }
  });
}

void TKovraRegistry::ReadRegistryStringListWKey(std::string_view root, std::string_view section,
                                                std::string_view name, TStrings& list) const {
  const std::string key = ListKey(root, section, name, "");  // first: they may be of the list
  list.Clear();
  const auto add = [&list](const std::string& valueName, const std::string& text) {
    list.Add(Format("%s=%s", {valueName, text}));
  };
  ForEachText(key, add);
}

void TKovraRegistry::WriteRegistryStringListWKey(std::string_view root, std::string_view section,
                                                 std::string_view name,
                                                 const TStrings& list) const {
  Rewrite(ListKey(root, section, name, ""), [&list](os::TRegistry& key) {
    for (int i = 0; i < list.Count(); ++i) {
      if (list[i].find('=') == std::string::npos) continue;
      key.WriteString(list.Names(i), list.ValueFromIndex(i));
    }
  });
}

}  // namespace kvshare
