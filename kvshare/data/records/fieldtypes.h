// The types of fields, numbered as the platform numbers them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

namespace kvshare {

enum class TFieldType : std::uint8_t {
  ftUnknown,
  ftString,
  ftSmallint,
  ftInteger,
  ftWord,
  ftBoolean,
  ftFloat,
  ftCurrency,
  ftBCD,
  ftDate,
  ftTime,
  ftDateTime,
  ftBytes,
  ftVarBytes,
  ftAutoInc,
  ftBlob,
  ftMemo,
  ftGraphic,
  ftFmtMemo,
  ftParadoxOle,
  ftDBaseOle,
  ftTypedBinary,
  ftCursor,
  ftFixedChar,
  ftWideString,
  ftLargeint,
  ftADT,
  ftArray,
  ftReference,
  ftDataSet,
  ftOraBlob,
  ftOraClob,
  ftVariant,
  ftInterface,
  ftIDispatch,
  ftGuid,
  ftTimeStamp,
  ftFMTBcd,
};
using enum TFieldType;

// How a field's values are read from its record.
enum class TFieldForm : std::uint8_t {
  None,     // no value can be read
  Text,     // characters
  Integer,  // whole numbers
  Real,     // doubles
  Decimal,  // [-]digits[.digits]
  Boolean,  // 0 or 1
  Date,     // yyyy-mm-dd
  Time,     // hh:mm:ss[.fff]
  Moment,   // yyyy-mm-dd hh:mm:ss[.fff]
  Bytes,    // as they are
};

// How a type's values are read, and the words by which a saved packet names the type. A type whose
// words another type has too is read back as the first one of them; one without words has no
// values.
struct TFieldTypeRow {
  TFieldType Type;
  TFieldForm Form;
  std::string_view PacketType;
  std::string_view PacketSubtype;
};

// One row a type, in the order of their numbers. What else depends on a type or a form is a switch
// without `default:`, so that the compiler names every place that a new one touches.
inline constexpr TFieldTypeRow kFieldTypes[] = {
    {ftUnknown, TFieldForm::None, "", ""},
    {ftString, TFieldForm::Text, "string", ""},
    {ftSmallint, TFieldForm::Integer, "i2", ""},
    {ftInteger, TFieldForm::Integer, "i4", ""},
    {ftWord, TFieldForm::Integer, "ui2", ""},
    {ftBoolean, TFieldForm::Boolean, "boolean", ""},
    {ftFloat, TFieldForm::Real, "r8", ""},
    {ftCurrency, TFieldForm::Decimal, "r8", "Money"},
    {ftBCD, TFieldForm::Decimal, "fixed", ""},
    {ftDate, TFieldForm::Date, "date", ""},
    {ftTime, TFieldForm::Time, "time", ""},
    {ftDateTime, TFieldForm::Moment, "dateTime", ""},
    {ftBytes, TFieldForm::Bytes, "bin.hex", ""},
    {ftVarBytes, TFieldForm::Bytes, "bin.hex", ""},
    {ftAutoInc, TFieldForm::Integer, "i4", "Autoinc"},
    {ftBlob, TFieldForm::Bytes, "bin.hex", "Binary"},
    {ftMemo, TFieldForm::Text, "bin.hex", "Text"},
    {ftGraphic, TFieldForm::Bytes, "bin.hex", "Graphics"},
    {ftFmtMemo, TFieldForm::Text, "bin.hex", "Formatted"},
    {ftParadoxOle, TFieldForm::Bytes, "bin.hex", "Binary"},
    {ftDBaseOle, TFieldForm::Bytes, "bin.hex", "Binary"},
    {ftTypedBinary, TFieldForm::Bytes, "bin.hex", "Binary"},
    {ftCursor, TFieldForm::None, "", ""},
    {ftFixedChar, TFieldForm::Text, "string", "FixedChar"},
    {ftWideString, TFieldForm::Text, "string.uni", ""},
    {ftLargeint, TFieldForm::Integer, "i8", ""},
    {ftADT, TFieldForm::None, "", ""},
    {ftArray, TFieldForm::None, "", ""},
    {ftReference, TFieldForm::None, "", ""},
    {ftDataSet, TFieldForm::None, "", ""},
    {ftOraBlob, TFieldForm::Bytes, "bin.hex", "Binary"},
    {ftOraClob, TFieldForm::Text, "bin.hex", "Text"},
    {ftVariant, TFieldForm::None, "", ""},
    {ftInterface, TFieldForm::None, "", ""},
    {ftIDispatch, TFieldForm::None, "", ""},
    {ftGuid, TFieldForm::Text, "string", "Guid"},
    {ftTimeStamp, TFieldForm::Moment, "SQLdateTime", ""},
    {ftFMTBcd, TFieldForm::Decimal, "fixedFMT", ""},
};

constexpr bool FieldTypesAreInOrder() {
  std::size_t number = 0;
  for (const TFieldTypeRow& row : kFieldTypes) {
    if (static_cast<std::size_t>(row.Type) != number++) return false;
  }
  return number == static_cast<std::size_t>(ftFMTBcd) + 1;
}
static_assert(FieldTypesAreInOrder(), "kFieldTypes is read by the number of the type");

constexpr TFieldForm FormOf(TFieldType type) {
  const auto number = static_cast<std::size_t>(type);
  return number < std::size(kFieldTypes) ? kFieldTypes[number].Form : TFieldForm::None;
}

struct TWholeRange {
  std::int64_t Least;
  std::int64_t Most;
  constexpr bool Has(std::int64_t value) const { return value >= Least && value <= Most; }
};

struct TWholeRangeRow {
  TFieldType Type;
  TWholeRange Range;
};
inline constexpr TWholeRangeRow kWholeRanges[] = {
    {ftSmallint, {INT16_MIN, INT16_MAX}},
    {ftInteger, {INT32_MIN, INT32_MAX}},
    {ftWord, {0, UINT16_MAX}},
    {ftAutoInc, {INT32_MIN, INT32_MAX}},
    {ftLargeint, {INT64_MIN, INT64_MAX}},
};

constexpr bool HasWholeRange(TFieldType type) {
  return std::ranges::find(kWholeRanges, type, &TWholeRangeRow::Type) != std::end(kWholeRanges);
}
static_assert(std::ranges::all_of(kFieldTypes,
                                  [](const TFieldTypeRow& row) {
                                    return (row.Form == TFieldForm::Integer) ==
                                           HasWholeRange(row.Type);
                                  }),
              "a type of whole numbers has its row in kWholeRanges");

// The whole numbers that a type of the form Integer holds; for other types the range of 64 bits.
constexpr TWholeRange WholeRangeOf(TFieldType type) {
  for (const TWholeRangeRow& row : kWholeRanges) {
    if (row.Type == type) return row.Range;
  }
  return {INT64_MIN, INT64_MAX};
}

constexpr bool IsNumeric(TFieldType type) {
  const TFieldForm form = FormOf(type);
  return form == TFieldForm::Integer || form == TFieldForm::Real || form == TFieldForm::Decimal;
}

// Whether the values of a type have a length: not more bytes than the field's Size.
constexpr bool IsSized(TFieldType type) {
  using enum TFieldType;
  return type == ftString || type == ftFixedChar || type == ftWideString || type == ftGuid ||
         type == ftBytes || type == ftVarBytes;
}

enum class TFieldKind : std::uint8_t {
  fkData,
  fkCalculated,    // filled by the dataset's OnCalcFields, kept nowhere
  fkLookup,        // read from another dataset
  fkInternalCalc,  // filled by OnCalcFields, kept with the record, not sent to a server
};
using enum TFieldKind;

// What a dataset knows of a column before it has a row.
struct TFieldDef {
  std::string Name;  // code page 874
  TFieldType DataType = TFieldType::ftUnknown;
  int Size = 0;       // bytes of a text, decimals of a decimal (with Precision 0: none declared)
  int Precision = 0;  // digits of a decimal
  bool Required = false;
  TFieldKind Kind = TFieldKind::fkData;
};

// String, FixedChar, WideString, Bytes and VarBytes: 1 .. 8192. BCD and FMTBcd: decimals, 0 .. 64
// and not more than the Precision where there is one. Of other types the Size says nothing. Fields
// that come from a server or a file are as they are there.
constexpr bool HasValidSize(const TFieldDef& def) {
  constexpr int kMostBytes = 8192;
  constexpr int kMostDecimals = 64;
  if (def.DataType == TFieldType::ftBCD || def.DataType == TFieldType::ftFMTBcd) {
    const int most =
        def.Precision > 0 && def.Precision < kMostDecimals ? def.Precision : kMostDecimals;
    return def.Size >= 0 && def.Size <= most && def.Precision >= 0;
  }
  const bool sized = IsSized(def.DataType) && def.DataType != TFieldType::ftGuid;
  return !sized || (def.Size >= 1 && def.Size <= kMostBytes);
}

}  // namespace kvshare
