// One column of a dataset as the current record fills it.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "kvshare/data/fieldtypes.h"
#include "kvshare/export.h"
#include "kvshare/rtl/component.h"
#include "kvshare/rtl/currency.h"
#include "kvshare/rtl/datetime.h"
#include "kvshare/rtl/variant.h"

namespace kvshare {

class TDataSet;

// The current record of a dataset: where its fields read their values, each in the form of its
// type (TFieldForm). Columns count from 0.
class KVSHARE_API TRecordReader {
 public:
  TRecordReader() = default;
  virtual ~TRecordReader() = default;
  TRecordReader(const TRecordReader&) = default;
  TRecordReader& operator=(const TRecordReader&) = default;

  virtual bool IsNull(int column) const = 0;  // true as well where there is no record
  virtual std::int64_t Integer(int column) const = 0;
  virtual double Float(int column) const = 0;
  // Valid until the record changes.
  virtual std::string_view Text(int column) const = 0;
  // Appends a column of characters in code page 874. Throws EConvertError where it cannot hold one.
  virtual void AppendCharacters(std::string& out, int column) const = 0;
};

// A field reads straight from the current record; nothing is kept of it here. Fields that a dataset
// made when it was opened vanish when it is closed.
//
// Each accessor reads the types that its row lists; others throw EDatabaseError
// `Cannot access field '%s' as type %s`.
//
//                  reads                              of Null
//   AsString       every type                         ""
//   AsInteger      texts, numbers                     0, of a text an error
//   AsLargeInt     texts, numbers                     likewise
//   AsFloat        texts, numbers, dates              likewise
//   AsCurrency     texts, numbers, dates              likewise
//   AsDateTime     texts, dates                       likewise
//   AsBoolean      texts, Booleans                    false
//
// A text is converted as StrToInt64, StrToFloat, StrToCurr and StrToDateTime do, with their errors;
// as a date, yyyy-mm-dd hh:mm:ss is read as well, which servers without dates give. As a Boolean it
// is true when it begins with T or Y in either case. A real and a decimal round
// half to even into an integer, a decimal into an amount, once, on all their digits. What does not
// fit the type asked for throws EDatabaseError
// `%g is not a valid value for field '%s'. The allowed range is %g to %g`.
class KVSHARE_API TField : public TComponent {
 public:
  // `record` is the dataset's own and lives as long as it.
  TField(TDataSet& dataset, const TRecordReader& record, int column, TFieldDef def);
  ~TField() override;
  TField(const TField&) = delete;
  TField& operator=(const TField&) = delete;

  TDataSet& DataSet() const { return dataset_; }
  int Index() const { return column_; }  // from 0
  const std::string& FieldName() const { return def_.Name; }
  TFieldType DataType() const { return def_.DataType; }
  int Size() const { return def_.Size; }
  int Precision() const { return def_.Precision; }
  bool Required() const { return def_.Required; }

  // The own text, else the field's name.
  const std::string& DisplayLabel() const {
    return displayLabel_.empty() ? def_.Name : displayLabel_;
  }
  const std::string& DisplayName() const { return DisplayLabel(); }
  void SetDisplayLabel(std::string_view label) { displayLabel_ = label; }

  bool IsNull() const { return record_.IsNull(column_); }

  // A number or date as the platform writes it with the process's FormatSettings: integers plain,
  // reals with 15 digits, decimals exactly and without zeros at the end, True or False, dates by
  // ShortDateFormat, times by LongTimeFormat, moments by both without a time of 00:00:00. Texts in
  // code page 874; bytes as they are. A letter that the code page lacks throws EDatabaseError
  // `Field '%s': No letter U+XXXX in code page 874, at byte P`.
  std::string AsString() const;
  void AppendString(std::string& out) const;

  std::int32_t AsInteger() const;
  std::int64_t AsLargeInt() const;
  double AsFloat() const;
  Currency AsCurrency() const;
  TDateTime AsDateTime() const;
  bool AsBoolean() const;

  // Null, or the value in its own type: text, integer, double, amount (a decimal that four decimals
  // cannot hold: its text), date-time, Boolean.
  Variant Value() const;

 private:
  [[noreturn]] void RefuseType(std::string_view type) const;
  [[noreturn]] void RefuseRange(double value, double least, double most) const;
  std::string Characters() const;
  Currency DecimalAsCurrency(std::string_view digits) const;
  std::int64_t WholeNumber(std::string_view type) const;
  std::int64_t WholeOfReal(double value) const;

  TDataSet& dataset_;
  const TRecordReader& record_;
  int column_;
  TFieldForm form_;
  TFieldDef def_;
  std::string displayLabel_;
};

}  // namespace kvshare
