#include "apps/kvshare/data/fieldspecs.h"

#include <algorithm>
#include <charconv>

#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::app {

namespace {

using enum TFieldType;

struct TypeName {
  TFieldType type;
  std::string_view name;
};

// A type goes by its first name.
constexpr TypeName kTypes[] = {
    {ftString, "string"},
    {ftFixedChar, "fixedchar"},
    {ftWideString, "widestring"},
    {ftGuid, "guid"},
    {ftMemo, "memo"},
    {ftFmtMemo, "fmtmemo"},
    {ftSmallint, "i2"},
    {ftWord, "ui2"},
    {ftInteger, "i4"},
    {ftAutoInc, "autoinc"},
    {ftLargeint, "i8"},
    {ftFloat, "r8"},
    {ftCurrency, "money"},
    {ftBCD, "fixed"},
    {ftFMTBcd, "fixedfmt"},
    {ftBoolean, "boolean"},
    {ftDate, "date"},
    {ftTime, "time"},
    {ftDateTime, "datetime"},
    {ftTimeStamp, "timestamp"},
    {ftBlob, "blob"},
    {ftGraphic, "graphic"},
    {ftBytes, "bytes"},
};

std::string_view TakePart(std::string_view& rest, char separator) {
  const std::size_t end = std::min(rest.find(separator), rest.size());
  const std::string_view part = Trim(rest.substr(0, end));
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return part;
}

bool IsDecimal(TFieldType type) {
  return type == ftBCD || type == ftFMTBcd;
}

int SizeOf(std::string_view text, std::string_view spec, int least) {
  int size = 0;
  const char* end = text.data() + text.size();
  const auto [last, error] = std::from_chars(text.data(), end, size);
  if (error != std::errc() || last != end || size < least) {
    throw EConvertError(Format("%s: '%s' is no size", {spec, text}));
  }
  return size;
}

TFieldDef ParseSpec(std::string_view spec) {
  std::string_view rest = spec;
  TFieldDef field;
  field.Name = TakePart(rest, ':');
  const std::string_view name = TakePart(rest, ':');
  const auto type = std::ranges::find_if(
      kTypes, [name](const TypeName& row) { return SameText(row.name, name); });
  if (field.Name.empty()) throw EConvertError(Format("'%s': a field without a name", {spec}));
  if (type == std::end(kTypes)) {
    throw EConvertError(Format("%s: a type is one of %s", {spec, FieldSpecTypes()}));
  }
  field.DataType = type->type;
  std::vector<int> sizes;
  while (!rest.empty()) {
    const std::string_view part = TakePart(rest, ':');
    if (SameText(part, "required")) {
      field.Required = true;
    } else {
      sizes.push_back(SizeOf(part, spec, IsDecimal(field.DataType) ? 0 : 1));
    }
  }
  const TFieldForm form = FormOf(field.DataType);
  const bool letters = form == TFieldForm::Text || form == TFieldForm::Bytes;
  const std::size_t most = IsDecimal(field.DataType) ? 2 : letters ? 1 : 0;
  if (sizes.size() > most) throw EConvertError(Format("%s: too many sizes", {spec}));
  if (IsDecimal(field.DataType)) {
    if (!sizes.empty()) field.Precision = sizes[0];
    if (sizes.size() == 2) field.Size = sizes[1];
  } else if (!sizes.empty()) {
    field.Size = sizes[0];
  }
  return field;
}

}  // namespace

std::vector<TFieldDef> ParseFieldSpecs(std::string_view specs) {
  std::vector<TFieldDef> fields;
  while (!specs.empty()) fields.push_back(ParseSpec(TakePart(specs, ',')));
  return fields;
}

std::string FieldSpec(const TFieldDef& field) {
  const auto type = std::ranges::find(kTypes, field.DataType, &TypeName::type);
  std::string spec = field.Name + ":";
  spec += type == std::end(kTypes) ? "blob" : type->name;
  const bool decimal = IsDecimal(field.DataType);
  const int size = decimal ? field.Precision : field.Size;
  const bool decimals = decimal && field.Size > 0;
  const bool sized = size > 0 && field.DataType != ftCurrency;
  if (sized || decimals) spec += ":" + std::to_string(size);
  if (decimals) spec += ":" + std::to_string(field.Size);
  if (field.Required) spec += ":required";
  return spec;
}

std::string FieldSpecTypes() {
  std::string names;
  for (const TypeName& type : kTypes) {
    if (!names.empty()) names += ", ";
    names += type.name;
  }
  return names;
}

}  // namespace kvshare::app
