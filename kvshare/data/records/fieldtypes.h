// The types of fields, numbered as the platform numbers them.
#pragma once

#include <cstdint>
#include <string>

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

constexpr TFieldForm FormOf(TFieldType type) {
  using enum TFieldType;
  switch (type) {
    case ftString:
    case ftMemo:
    case ftFmtMemo:
    case ftFixedChar:
    case ftWideString:
    case ftOraClob:
    case ftGuid:
      return TFieldForm::Text;
    case ftSmallint:
    case ftInteger:
    case ftWord:
    case ftAutoInc:
    case ftLargeint:
      return TFieldForm::Integer;
    case ftFloat:
      return TFieldForm::Real;
    case ftCurrency:
    case ftBCD:
    case ftFMTBcd:
      return TFieldForm::Decimal;
    case ftBoolean:
      return TFieldForm::Boolean;
    case ftDate:
      return TFieldForm::Date;
    case ftTime:
      return TFieldForm::Time;
    case ftDateTime:
    case ftTimeStamp:
      return TFieldForm::Moment;
    case ftBytes:
    case ftVarBytes:
    case ftBlob:
    case ftGraphic:
    case ftParadoxOle:
    case ftDBaseOle:
    case ftTypedBinary:
    case ftOraBlob:
      return TFieldForm::Bytes;
    default:
      return TFieldForm::None;
  }
}

// The whole numbers that a type of the form Integer holds.
struct TWholeRange {
  std::int64_t Least;
  std::int64_t Most;
  constexpr bool Has(std::int64_t value) const { return value >= Least && value <= Most; }
};

constexpr TWholeRange WholeRangeOf(TFieldType type) {
  switch (type) {
    case TFieldType::ftSmallint:
      return {INT16_MIN, INT16_MAX};
    case TFieldType::ftWord:
      return {0, UINT16_MAX};
    case TFieldType::ftInteger:
    case TFieldType::ftAutoInc:
      return {INT32_MIN, INT32_MAX};
    default:
      return {INT64_MIN, INT64_MAX};
  }
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
