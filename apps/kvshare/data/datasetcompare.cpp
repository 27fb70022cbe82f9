#include "apps/kvshare/data/datasetcompare.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <unordered_map>
#include <vector>

#include "apps/kvshare/data/fieldspecs.h"
#include "apps/kvshare/data/printedvalue.h"
#include "kvshare/data/contract/errors.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::app {

namespace {

using Tell = std::function<void(const DatasetDifference&)>;
using Side = DatasetDifference::Side;

// Amounts without zeros at the end: 12.50 and 12.5 are one, whatever the fields' decimals.
std::optional<std::string> TextOf(const TField& field) {
  if (field.IsNull()) return std::nullopt;
  std::string text;
  AppendField(text, field);
  if (FormOf(field.DataType()) == TFieldForm::Decimal && text.find('.') != std::string::npos) {
    text.resize(text.find_last_not_of('0') + 1);
    if (text.ends_with('.')) text.pop_back();
  }
  return text;
}

// Values in one text, so that two lists of them are equal when their texts are.
void Pack(std::string& out, const std::optional<std::string>& value) {
  if (value) out.append(std::to_string(value->size())).append(":").append(*value);
  out.push_back(';');
}

std::optional<std::string> Unpack(std::string_view& packed) {
  std::size_t size = 0;
  const auto end = std::from_chars(packed.data(), packed.data() + packed.size(), size).ptr;
  const auto digits = static_cast<std::size_t>(end - packed.data());
  if (digits == 0) {
    packed.remove_prefix(1);
    return std::nullopt;
  }
  std::string value(packed.substr(digits + 1, size));
  packed.remove_prefix(digits + 1 + size + 1);
  return value;
}

// Fields of a set that both have, in one order for both.
class Fields {
 public:
  Fields(const TClientDataSet& set, const std::vector<std::string>& names) {
    for (const std::string& name : names) fields_.push_back(&set.FieldByName(name));
  }
  std::string Packed() const {
    std::string packed;
    for (const TField* field : fields_) Pack(packed, TextOf(*field));
    return packed;
  }
  std::string Shown() const {
    std::string shown;
    for (const TField* field : fields_) {
      if (field != fields_.front()) shown += ';';
      AppendField(shown, *field);
    }
    return shown;
  }
  const std::vector<const TField*>& All() const { return fields_; }

 private:
  std::vector<const TField*> fields_;
};

void CompareFields(const TClientDataSet& first, const TClientDataSet& second, const Tell& tell) {
  const auto find = [](const TClientDataSet& set, const std::string& name) {
    const auto& all = set.FieldDefs().All();
    const auto found =
        std::ranges::find_if(all, [&](const TFieldDef& def) { return SameText(def.Name, name); });
    return found == all.end() ? nullptr : &*found;
  };
  for (const TFieldDef& field : first.FieldDefs().All()) {
    const TFieldDef* other = find(second, field.Name);
    const std::string spec = FieldSpec(field);
    if (other == nullptr) {
      tell({Side::First, false, "", field.Name, spec, std::nullopt});
    } else if (std::string otherSpec = FieldSpec(*other); !SameText(otherSpec, spec)) {
      tell({Side::Both, false, "", field.Name, spec, std::move(otherSpec)});
    }
  }
  for (const TFieldDef& field : second.FieldDefs().All()) {
    if (find(first, field.Name) == nullptr) {
      tell({Side::Second, false, "", field.Name, std::nullopt, FieldSpec(field)});
    }
  }
}

std::vector<std::string> Split(std::string_view names) {
  std::vector<std::string> list;
  while (!names.empty()) {
    const std::size_t end = std::min(names.find_first_of(";,"), names.size());
    list.emplace_back(Trim(names.substr(0, end)));
    names.remove_prefix(std::min(end + 1, names.size()));
  }
  return list;
}

class RecordComparison {
 public:
  RecordComparison(TClientDataSet& first, TClientDataSet& second, std::string_view key,
                   const Tell& tell);
  void Run();

 private:
  struct Entry {
    int count = 0;
    std::string values;
  };

  void ReadSecond();
  void CompareFirst();
  void TellRest();
  void CompareValues(const std::string& key, const Fields& fields, const std::string& values);

  TClientDataSet& first_;
  TClientDataSet& second_;
  const Tell& tell_;
  bool keyed_ = false;
  std::vector<std::string> keyNames_;
  std::vector<std::string> valueNames_;
  std::unordered_map<std::string, Entry> entries_;  // of the second set, by key
};

RecordComparison::RecordComparison(TClientDataSet& first, TClientDataSet& second,
                                   std::string_view key, const Tell& tell)
    : first_(first), second_(second), tell_(tell) {
  keyNames_ = Split(key.empty() ? std::string_view{first.PrimaryKey()} : key);
  keyed_ = !keyNames_.empty();
  for (const TFieldDef& field : first.FieldDefs().All()) {
    if (second.FindField(field.Name) == nullptr) continue;
    const bool inKey = std::ranges::any_of(
        keyNames_, [&](const std::string& name) { return SameText(name, field.Name); });
    if (!inKey) (keyed_ ? valueNames_ : keyNames_).push_back(field.Name);
  }
}

void RecordComparison::Run() {
  ReadSecond();
  CompareFirst();
  TellRest();
}

[[noreturn]] void RefuseDouble(std::string_view which, const std::string& key) {
  DatabaseError(Format("%s file has two records with the key %s", {which, key}), nullptr);
}

void RecordComparison::ReadSecond() {
  const Fields keys(second_, keyNames_);
  const Fields values(second_, valueNames_);
  for (second_.First(); !second_.Eof(); second_.Next()) {
    Entry& entry = entries_[keys.Packed()];
    if (keyed_ && entry.count != 0) RefuseDouble("the second", keys.Shown());
    ++entry.count;
    entry.values = values.Packed();
  }
}

void RecordComparison::CompareFirst() {
  const Fields keys(first_, keyNames_);
  const Fields values(first_, valueNames_);
  for (first_.First(); !first_.Eof(); first_.Next()) {
    const auto found = entries_.find(keys.Packed());
    if (found == entries_.end()) {
      tell_({Side::First, true, keys.Shown(), "", std::nullopt, std::nullopt});
      if (keyed_) entries_[keys.Packed()].count = -1;
    } else if (found->second.count <= 0) {
      if (keyed_) RefuseDouble("the first", keys.Shown());
      tell_({Side::First, true, keys.Shown(), "", std::nullopt, std::nullopt});
    } else {
      --found->second.count;
      CompareValues(keys.Shown(), values, found->second.values);
    }
  }
}

void RecordComparison::CompareValues(const std::string& key, const Fields& fields,
                                     const std::string& values) {
  if (fields.Packed() == values) return;
  std::string_view rest = values;
  for (const TField* field : fields.All()) {
    std::optional<std::string> before = TextOf(*field);
    std::optional<std::string> after = Unpack(rest);
    if (before == after) continue;
    tell_({Side::Both, true, key, field->FieldName(), std::move(before), std::move(after)});
  }
}

void RecordComparison::TellRest() {
  const Fields keys(second_, keyNames_);
  for (second_.First(); !second_.Eof(); second_.Next()) {
    Entry& entry = entries_[keys.Packed()];
    if (entry.count <= 0) continue;
    --entry.count;
    tell_({Side::Second, true, keys.Shown(), "", std::nullopt, std::nullopt});
  }
}

}  // namespace

void CompareDatasets(TClientDataSet& first, TClientDataSet& second, std::string_view key,
                     const Tell& tell) {
  CompareFields(first, second, tell);
  RecordComparison(first, second, key, tell).Run();
}

}  // namespace kvshare::app
