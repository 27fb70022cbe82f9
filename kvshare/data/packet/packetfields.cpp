#include "kvshare/data/packet/packetfields.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <span>
#include <unordered_map>
#include <unordered_set>

#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::data {

namespace {

using enum TFieldType;

// What other writers send besides the words of kFieldTypes.
constexpr TFieldTypeRow kOnlyRead[] = {
    {ftSmallint, TFieldForm::Integer, "i1", ""},
    {ftWord, TFieldForm::Integer, "ui1", ""},
    {ftLargeint, TFieldForm::Integer, "ui4", ""},
};

struct RangeRow {
  std::string_view fieldtype;
  std::int64_t least;
  std::int64_t most;
};
template <typename Int>
constexpr RangeRow RangeOf(std::string_view fieldtype) {
  return {fieldtype, std::numeric_limits<Int>::min(), std::numeric_limits<Int>::max()};
}
constexpr RangeRow kRanges[] = {
    RangeOf<std::int8_t>("i1"),    RangeOf<std::uint8_t>("ui1"), RangeOf<std::int16_t>("i2"),
    RangeOf<std::uint16_t>("ui2"), RangeOf<std::int32_t>("i4"),  RangeOf<std::uint32_t>("ui4"),
    RangeOf<std::int64_t>("i8"),
};

constexpr int kBytesOfWideLetter = 2;
constexpr std::string_view kCalculated = "internalcalc";  // ours: other readers ignore it

// The row of the two words; of the first word alone where no row has the second.
const TFieldTypeRow* FindType(std::string_view fieldtype, std::string_view subtype) {
  const TFieldTypeRow* plain = nullptr;
  for (const std::span<const TFieldTypeRow> rows :
       {std::span<const TFieldTypeRow>(kFieldTypes), std::span<const TFieldTypeRow>(kOnlyRead)}) {
    for (const TFieldTypeRow& row : rows) {
      if (row.PacketType.empty() || !SameText(row.PacketType, fieldtype)) continue;
      if (SameText(row.PacketSubtype, subtype)) return &row;
      if (row.PacketSubtype.empty() && plain == nullptr) plain = &row;
    }
  }
  return plain;
}

std::string_view TextOf(const PacketNode& node, std::string_view attribute) {
  const std::string* text = node.Attribute(attribute);
  if (text == nullptr) return {};
  return *text;
}

int NumberOf(const PacketNode& node, std::string_view attribute) {
  const std::string* text = node.Attribute(attribute);
  if (text == nullptr) return 0;
  int value = 0;
  const char* end = text->data() + text->size();
  const auto [last, error] = std::from_chars(text->data(), end, value);
  if (error != std::errc() || last != end || value < 0) {
    throw PacketError(node.line, std::string(attribute) + " " + Shown(*text) + " is no number");
  }
  return value;
}

void ReadSizes(TFieldDef& def, const PacketNode& field) {
  const int width = NumberOf(field, "WIDTH");
  switch (FormOf(def.DataType)) {
    case TFieldForm::Decimal:
      def.Size = NumberOf(field, "DECIMALS");
      def.Precision = width;
      break;
    case TFieldForm::Text:
      def.Size = def.DataType == ftWideString ? width / kBytesOfWideLetter : width;
      break;
    case TFieldForm::Bytes:
      def.Size = width;
      if (def.DataType == ftBytes && width == 0) def.DataType = ftBlob;
      break;
    case TFieldForm::None:
    case TFieldForm::Integer:
    case TFieldForm::Real:
    case TFieldForm::Boolean:
    case TFieldForm::Date:
    case TFieldForm::Time:
    case TFieldForm::Moment:
      break;
  }
}

bool SameField(const TFieldDef& a, const TFieldDef& b) {
  return SameText(a.Name, b.Name) && a.DataType == b.DataType && a.Size == b.Size &&
         a.Precision == b.Precision && a.Required == b.Required && a.Kind == b.Kind;
}

bool IsThaiNameStart(unsigned char c) {
  return (c >= 0xA1 && c <= 0xCE) || c == 0xD0 || c == 0xD2 || c == 0xD3 ||
         (c >= 0xE0 && c <= 0xE5);
}

bool IsNameStart(unsigned char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' || IsThaiNameStart(c);
}

bool IsNameLetter(unsigned char c) {
  return IsNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.' || c == 0xD1 ||
         (c >= 0xD4 && c <= 0xDA) || (c >= 0xE6 && c <= 0xEE) || (c >= 0xF0 && c <= 0xF9);
}

PacketNode NewNode(const TFieldDef& def, std::string attribute) {
  const TFieldTypeRow& type = kFieldTypes[static_cast<std::size_t>(def.DataType)];
  if (type.PacketType.empty()) {
    throw EDBClient(Format("Field '%s' is of a type that a data packet cannot hold", {def.Name}),
                    0);
  }
  PacketNode field{"FIELD", {}, {}, 0};
  field.Set("attrname", std::move(attribute));
  if (field.attributes.front().second != def.Name) field.Set("fieldname", def.Name);
  field.Set("fieldtype", std::string(type.PacketType));
  if (def.Required) field.Set("required", "true");
  if (def.Kind == TFieldKind::fkInternalCalc) field.Set(kCalculated, "true");
  if (!type.PacketSubtype.empty()) field.Set("SUBTYPE", std::string(type.PacketSubtype));
  const bool decimal = FormOf(def.DataType) == TFieldForm::Decimal && def.DataType != ftCurrency;
  if (decimal && def.Size > 0) field.Set("DECIMALS", std::to_string(def.Size));
  int width = decimal ? def.Precision : def.Size;
  if (def.DataType == ftWideString) width *= kBytesOfWideLetter;
  if (width > 0 && def.DataType != ftCurrency) field.Set("WIDTH", std::to_string(width));
  return field;
}

// A name for a field whose own no row can have: F1, F2...
std::string NewName(std::unordered_set<std::string>& taken) {
  for (std::size_t number = 1;; ++number) {
    std::string name = "F" + std::to_string(number);
    if (taken.insert(name).second) return name;
  }
}

}  // namespace

bool CanBeAttribute(std::string_view name) {
  return !name.empty() && name != kRowState &&
         IsNameStart(static_cast<unsigned char>(name.front())) &&
         std::ranges::all_of(name,
                             [](char c) { return IsNameLetter(static_cast<unsigned char>(c)); });
}

PacketColumn ColumnOf(const PacketNode& field) {
  PacketColumn column;
  column.attribute = TextOf(field, "attrname");
  const std::string* name = field.Attribute("fieldname");
  column.def.Name = name == nullptr ? column.attribute : *name;
  if (column.attribute.empty() || column.def.Name.empty()) {
    throw PacketError(field.line, "a field without a name");
  }
  const std::string_view fieldtype = TextOf(field, "fieldtype");
  const TFieldTypeRow* type = FindType(fieldtype, TextOf(field, "SUBTYPE"));
  if (type == nullptr) {
    throw PacketError(field.line, "field " + Shown(column.def.Name) + " has the type " +
                                      Shown(fieldtype) + ", which is not known");
  }
  column.def.DataType = type->Type;
  column.def.Required = SameText(TextOf(field, "required"), "true");
  if (SameText(TextOf(field, kCalculated), "true")) column.def.Kind = TFieldKind::fkInternalCalc;
  ReadSizes(column.def, field);
  column.form = FormOf(column.def.DataType);
  const auto range = std::ranges::find(kRanges, type->PacketType, &RangeRow::fieldtype);
  if (range != std::end(kRanges)) {
    column.least = range->least;
    column.most = range->most;
  }
  return column;
}

std::vector<PacketColumn> ColumnsOf(const PacketNode& fields) {
  std::vector<PacketColumn> columns;
  std::unordered_set<std::string> names;
  std::unordered_set<std::string> attributes;
  for (const PacketNode& field : fields.children) {
    if (field.name != "FIELD") {
      throw PacketError(field.line, "the element " + Shown(field.name) + " among the fields");
    }
    const bool nested = field.Child("FIELDS") != nullptr || field.Child("FIELD") != nullptr;
    if (nested) throw PacketError(field.line, "a field with fields inside");
    columns.push_back(ColumnOf(field));
    const PacketColumn& column = columns.back();
    if (!names.insert(UpperCase(column.def.Name)).second ||
        !attributes.insert(UpperCase(column.attribute)).second) {
      throw PacketError(field.line, "two fields " + Shown(column.def.Name));
    }
    if (columns.size() > kMostFields) throw PacketError(field.line, "too many fields");
  }
  if (columns.empty()) throw PacketError(fields.line, "no fields");
  return columns;
}

std::vector<PacketNode> FieldNodes(const std::vector<TFieldDef>& fields,
                                   const PacketNode* earlier) {
  std::unordered_map<std::string, const PacketNode*> known;
  if (earlier != nullptr) {
    for (const PacketNode& field : earlier->children) {
      known.emplace(UpperCase(ColumnOf(field).def.Name), &field);
    }
  }
  std::vector<PacketNode> nodes(fields.size());
  std::unordered_set<std::string> taken;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    const auto found = known.find(UpperCase(fields[i].Name));
    if (found == known.end() || !SameField(ColumnOf(*found->second).def, fields[i])) continue;
    nodes[i] = *found->second;
    taken.insert(UpperCase(TextOf(nodes[i], "attrname")));
  }
  for (std::size_t i = 0; i < fields.size(); ++i) {
    if (!nodes[i].name.empty()) continue;
    const std::string& name = fields[i].Name;
    const bool own = CanBeAttribute(name) && taken.insert(UpperCase(name)).second;
    nodes[i] = NewNode(fields[i], own ? name : NewName(taken));
  }
  return nodes;
}

}  // namespace kvshare::data
