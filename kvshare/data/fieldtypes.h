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

constexpr bool IsNumeric(TFieldType type) {
  const TFieldForm form = FormOf(type);
  return form == TFieldForm::Integer || form == TFieldForm::Real || form == TFieldForm::Decimal;
}

enum class TFieldKind : std::uint8_t {
  fkData,
  fkCalculated,    // filled by the dataset's OnCalcFields, kept nowhere
  fkLookup,        // read from another dataset
  fkInternalCalc,  // filled by OnCalcFields, kept with the record, not sent to a server
};

// What a dataset knows of a column before it has a row.
struct TFieldDef {
  std::string Name;  // code page 874
  TFieldType DataType = TFieldType::ftUnknown;
  int Size = 0;       // bytes of a text, decimals of a decimal
  int Precision = 0;  // digits of a decimal
  bool Required = false;
  TFieldKind Kind = TFieldKind::fkData;
};

}  // namespace kvshare
