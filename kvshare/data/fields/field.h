// One column of a dataset as the current record fills it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

#include "kvshare/data/records/fieldtypes.h"
#include "kvshare/data/records/recordreader.h"
#include "kvshare/export.h"
#include "kvshare/rtl/component.h"
#include "kvshare/rtl/currency.h"
#include "kvshare/rtl/datetime.h"
#include "kvshare/rtl/variant.h"

namespace kvshare {

class TDataSet;

namespace data {
struct Cell;
class OwnedCell;
}  // namespace data

class TField;

using TFieldNotifyEvent = std::function<void(TField&)>;
// `text` is empty; `displayText` tells whether it is to be shown or to be edited.
using TFieldGetTextEvent = std::function<void(TField&, std::string& text, bool displayText)>;
using TFieldSetTextEvent = std::function<void(TField&, std::string_view text)>;

// Which of a field's values: before the edit or change, after it, or what the server has now.
enum class TFieldImage : std::uint8_t { Old, New, Cur };

// What a field's column means to the statements that write a record to a server.
struct TProviderFlags {
  bool pfInUpdate = true;  // may be set
  bool pfInWhere = true;   // may be asked for
  bool pfInKey = false;    // finds the record
  bool operator==(const TProviderFlags&) const = default;
};

// A field reads straight from the current record; nothing is kept of it here. Fields that a dataset
// made when it was opened vanish when it is closed.
//
// Each accessor reads and sets the types that its row lists; others throw EDatabaseError
// `Cannot access field '%s' as type %s`.
//
//                    reads                            sets                      of Null
//   AsString         every type                       every type                ""
//   AsInteger        texts, numbers                   texts, numbers            0, a text raises
//   AsLargeInt       texts, numbers                   texts, numbers            likewise
//   AsFloat          texts, numbers, dates            texts, numbers            likewise
//   AsCurrency       texts, numbers, dates            texts, numbers            likewise
//   AsDateTime       texts, dates                     texts, dates              likewise
//   AsSQLTimeStamp   dates                            dates                     likewise
//   AsBoolean        texts, Booleans                  texts, Booleans           false
//
// A text is converted as StrToInt64, StrToFloat, StrToCurr and StrToDateTime do, with their errors;
// as a date, yyyy-mm-dd hh:mm:ss is read as well, which servers without dates give. As a Boolean it
// is true when it begins with T or Y in either case. A real and a decimal round
// half to even into an integer, a decimal into an amount, once, on all their digits. What does not
// fit the type asked for throws EDatabaseError
// `%g is not a valid value for field '%s'. The allowed range is %g to %g`.
//
// A server can have what is no value of the field's type: 1,200.50 in a column of amounts of a
// server that takes any text, 0000-00-00, a day of the year 10000. Every accessor, the texts too,
// throws EDatabaseError `'%s' is not a valid floating point value for field '%s'` then
// (`date`, `time`, `date and time`); only IsNull reads it, and a new value can be stored over it.
//
// Storing rounds: a real is taken with the 15 digits that it surely has, and a decimal field with
// declared decimals (a Size or a Precision that is not 0) keeps Size of them. A tie goes away from
// zero, as in the DECIMAL columns of all servers and in DisplayFormat: 2.345 is 2.35, -2.345 is
// -2.35. Fields of the type Currency, and others without declared decimals, keep all digits.
//
// Storing goes the same way for every setter: the dataset must be in dsEdit or dsInsert
// (`Dataset not in edit or insert mode`), the field not ReadOnly (`Field '%s' cannot be modified`),
// OnValidate must not throw; then the value is stored and OnChange called. While OnValidate runs
// the field reads as the value that is to be stored, until the handler stores one itself.
class KVSHARE_API TField : public TComponent {
 public:
  // `record` is the dataset's own and lives as long as it; `column` is the field's place there.
  TField(TDataSet& dataset, const TRecordReader& record, int index, int column, TFieldDef def);
  ~TField() override;
  TField(const TField&) = delete;
  TField& operator=(const TField&) = delete;

  TDataSet& DataSet() const { return dataset_; }
  int Index() const { return index_; }  // in the dataset, from 0
  const std::string& FieldName() const { return def_.Name; }
  TFieldType DataType() const { return def_.DataType; }
  TFieldKind FieldKind() const { return def_.Kind; }
  int Size() const { return def_.Size; }
  int Precision() const { return def_.Precision; }

  bool Required() const { return def_.Required; }  // Post refuses Null
  void SetRequired(bool required) { def_.Required = required; }
  bool ReadOnly = false;
  TProviderFlags ProviderFlags;

  // The least and the most that a number may be, where one of them is not 0; the range of the type
  // binds besides.
  double MinValue = 0;
  double MaxValue = 0;

  // The own text, else the field's name.
  const std::string& DisplayLabel() const {
    return displayLabel_.empty() ? def_.Name : displayLabel_;
  }
  const std::string& DisplayName() const { return DisplayLabel(); }
  void SetDisplayLabel(std::string_view label) { displayLabel_ = label; }

  std::string EditMask;       // editmask.h
  std::string DisplayFormat;  // of numbers as FormatFloat's mask, of dates as FormatDateTime's
  std::string EditFormat;     // of numbers while they are edited; else DisplayFormat counts

  TFieldGetTextEvent OnGetText;
  TFieldSetTextEvent OnSetText;
  TFieldNotifyEvent OnValidate;
  TFieldNotifyEvent OnChange;

  bool IsNull() const { return Record().IsNull(column_); }

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
  TDateTime AsSQLTimeStamp() const;  // of a bare time: on 1899-12-30
  bool AsBoolean() const;

  // Null, or the value in its own type: text, integer, double, amount (a decimal that four decimals
  // cannot hold: its text), date-time, Boolean.
  Variant Value() const;

  void Clear();  // Null

  // "" is Null for everything but texts. A text of more than Size bytes is cut, silently, where the
  // type has a length (IsSized); memos and blobs have none. A decimal has any number of digits and,
  // if need be, an exponent. What is no number or Boolean throws EDatabaseError
  // `'%s' is not a valid integer value for field '%s'` (`floating point`, `boolean`), NaN and
  // infinity too; what is no date EConvertError as StrToDate and its siblings do, into a TimeStamp
  // `Could not parse SQL TimeStamp string`. A day outside the years 1 to 9999 throws EDatabaseError
  // `Invalid value for field '%s'`.
  void SetAsString(std::string_view text);
  void SetAsInteger(std::int64_t value);
  void SetAsLargeInt(std::int64_t value) { SetAsInteger(value); }
  void SetAsFloat(double value);
  void SetAsCurrency(Currency amount);
  void SetAsDateTime(TDateTime moment);
  void SetAsSQLTimeStamp(TDateTime moment);  // a bare time lies on 1899-12-30
  void SetAsBoolean(bool value);
  // Null and Unassigned clear. Throws EDatabaseError `Invalid value for field '%s'` for what cannot
  // be converted.
  void SetValue(const Variant& value);

  // What a control shows and edits: OnGetText's, else a number or date by its formats, a text that
  // is shown through its EditMask, `(MEMO)` or `(Memo)` (Null) for a memo that is shown, AsString.
  std::string DisplayText() const { return TextOf(true); }
  std::string Text() const { return TextOf(false); }
  // What a user has typed: OnSetText alone decides, else SetAsString.
  void SetText(std::string_view text);

  // DisplayText of another value, which the record need not have. Throws as SetValue does, but the
  // value is neither rounded nor cut, and may lie out of range.
  std::string DisplayTextOf(const Variant& value);
  // A whole line that a user has typed in the place of the text: without anything Null, else
  // SetText of what EditMask makes of it (TEditMask::ValueOfLine, with its error).
  void SetTextOfLine(std::string_view line);

  // Null, the value, or Unassigned where the dataset has none (clientdataset.h).
  Variant OldValue() const { return ImageValue(TFieldImage::Old); }
  Variant NewValue() const { return ImageValue(TFieldImage::New); }
  Variant CurValue() const { return ImageValue(TFieldImage::Cur); }
  void SetNewValue(const Variant& value) { SetValue(value); }

 private:
  friend class TDataSet;
  friend class TClientDataSet;
  friend class TParam;

  // The value as this field would store it, without a look at the dataset; Null of Null and
  // Unassigned. Throws as SetValue does, but the value is neither rounded nor cut, and may lie out
  // of range.
  data::OwnedCell Converted(const Variant& value);
  // The value to search for in this field: as Converted, but a number that the field cannot hold,
  // such as 5.5 in an integer field, matches no record instead of raising an error.
  data::OwnedCell Sought(const Variant& value);
  // The value in another record of the same columns.
  Variant ValueIn(const TRecordReader& record) const;
  // What `read` gives while accessors read that record.
  template <typename Read>
  auto Showing(const TRecordReader& record, Read read) const {
    struct Restored {
      const TField& field;
      const TRecordReader* earlier;
      ~Restored() { field.shown_ = earlier; }
    };
    const Restored restored{*this, std::exchange(shown_, &record)};
    return read();
  }

  // What accessors read: the record, or what they are shown in its place for a moment.
  const TRecordReader& Record() const { return shown_ != nullptr ? *shown_ : *record_; }

  [[noreturn]] void RefuseType(std::string_view type) const;
  [[noreturn]] void RefuseRange(double value, double least, double most) const;
  [[noreturn]] void RefuseText(std::string_view text, std::string_view kind) const;
  [[noreturn]] void RefuseRead(std::string_view text) const;
  [[noreturn]] void RefuseValue() const;
  std::string Characters() const;
  std::string_view Digits() const;
  Currency DecimalAsCurrency(std::string_view digits) const;
  std::int64_t WholeNumber(std::string_view type) const;
  std::int64_t WholeOfReal(double value, double least, double most) const;

  Variant ImageValue(TFieldImage image) const;
  std::string TextOf(bool display) const;
  void AppendOwnText(std::string& out, bool display) const;

  void Store(const data::Cell& value);
  void Validate(const data::Cell& value);
  void StoreText(std::string_view text);
  void StoreInteger(std::int64_t value);
  void StoreReal(double value);
  void StoreDecimal(std::string_view digits);
  void StoreShortest(std::string digits);
  void StoreMoment(TDateTime moment);
  void StoreTypedDecimal(std::string_view text);
  void StoreTypedMoment(std::string_view text);
  void StoreVariant(const Variant& value);
  void StoreVariantDecimal(const Variant& value);
  template <typename Type>
  Type Fit(const Variant& value, Type (Variant::*convert)() const) const;
  bool IsDate() const;
  bool IsBounded() const { return MinValue != 0 || MaxValue != 0; }

  TDataSet& dataset_;
  const TRecordReader* record_;
  mutable const TRecordReader* shown_ = nullptr;
  data::OwnedCell* converted_ = nullptr;  // where a value goes that is not to be stored
  int index_;
  int column_;
  TFieldForm form_;
  TFieldDef def_;
  std::string displayLabel_;
};

}  // namespace kvshare
