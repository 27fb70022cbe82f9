#include "apps/kvshare/data/tablerecord.h"

#include <algorithm>
#include <utility>

#include "apps/receipts/amounts.h"
#include "kvshare/database/dbpost.h"
#include "kvshare/database/errorform.h"
#include "kvshare/dates/dbdate.h"
#include "kvshare/rtl/ascii.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatsettings.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/settings/globals.h"
#include "kvshare/ui/consoletext.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kNothing = "(nothing)";

bool IsNameByte(char c) {
  constexpr unsigned char kFirstThaiLetter = 0xA1;
  return IsLatinLetter(c) || IsDigit(c) || c == '_' || c == '$' || c == '.' ||
         static_cast<unsigned char>(c) >= kFirstThaiLetter;
}

// The name stands in statements as it is: a text that could be more than a name never gets there.
void CheckTableName(std::string_view name) {
  if (!name.empty() && std::ranges::all_of(name, IsNameByte)) return;
  throw Exception("'" + std::string(name) + "' is no name of a table");
}

bool IsMoney(const TField& field) {
  return FormOf(field.DataType()) == TFieldForm::Decimal;
}

// Thousands as they are shown may be typed, too.
void SetAmountText(TField& field, std::string_view text) {
  if (text.find(FormatSettings.ThousandSeparator) == std::string_view::npos) {
    field.SetAsString(text);
  } else {
    field.SetAsCurrency(receipts::ParseAmount(text));
  }
}

void AttachTo(TClientDataSet& set, TField& field) {
  using D = TKovraDbDate;
  const std::string& name = field.FieldName();
  const bool required = field.Required();
  switch (FormOf(field.DataType())) {
    case TFieldForm::Date:
      return required ? D::SetDateField(set, name) : D::SetDateNullField(set, name);
    case TFieldForm::Time:
      return required ? D::SetTimeNotNullField(set, name) : D::SetTimeNullField(set, name);
    case TFieldForm::Moment:
      return required ? D::SetDateTimeField(set, name) : D::SetDateTimeNullField(set, name);
    case TFieldForm::None:
    case TFieldForm::Text:
    case TFieldForm::Integer:
    case TFieldForm::Real:
    case TFieldForm::Decimal:
    case TFieldForm::Boolean:
    case TFieldForm::Bytes:
      break;
  }
  if (!IsMoney(field)) return;
  field.DisplayFormat = dsplBahtEditMask;
  field.EditFormat = editBahtEditMask;
  field.OnSetText = SetAmountText;
}

bool FitsFormat(std::string_view number) {
  const std::size_t point = number.find(FormatSettings.DecimalSeparator);
  return point == std::string_view::npos || number.size() - point - 1 <= BahtDigit;
}

}  // namespace

TableRecord::TableRecord(TSQLConnection& connection, std::string_view table, TypedValues key)
    : key_(std::move(key)), provider_(connection), set_(nullptr, table) {
  CheckTableName(table);
  provider_.TableName = table;
  for (const TypedValue& value : key_) {
    provider_.KeyFields.append(provider_.KeyFields.empty() ? "" : ";").append(value.field);
  }
  set_.SetProvider(&provider_);
  TKovraDbPost::SetUserDataSetProperties(set_);
}

std::string TableRecord::Title() const {
  std::string title = provider_.TableName;
  for (const TypedValue& value : key_) title.append(" " + value.field + "=" + value.text);
  return OneLine(title);
}

bool TableRecord::IsKey(const TField& field) const {
  return std::ranges::any_of(
      key_, [&field](const TypedValue& value) { return SameText(value.field, field.FieldName()); });
}

void TableRecord::SelectWhere(const std::string& condition) {
  TStrings& sql = provider_.Query().SQL();
  sql.Clear();
  sql.Add("SELECT * FROM " + provider_.TableName + " WHERE " + condition);
}

void TableRecord::Attach() {
  for (int i = 0; i < set_.FieldCount(); ++i) AttachTo(set_, set_.Fields(i));
}

void TableRecord::PutKey() {
  for (const TypedValue& value : key_) StoreLine(set_.FieldByName(value.field), value.text);
}

// The names are the server's own by now, the values parameters.
std::string TableRecord::KeyCondition() const {
  std::string condition;
  for (std::size_t i = 0; i < key_.size(); ++i) {
    condition.append(i == 0 ? "" : " AND ");
    condition.append(Format("%s = :KEY%d", {set_.FieldByName(key_[i].field).FieldName(),
                                            static_cast<std::int64_t>(i)}));
  }
  return condition;
}

void TableRecord::BindKey() {
  for (std::size_t i = 0; i < key_.size(); ++i) {
    TParam& parameter = provider_.Query().ParamByName("KEY" + std::to_string(i));
    parameter.AssignField(set_.FieldByName(key_[i].field));
  }
}

void TableRecord::Append() {
  SelectWhere("1 = 0");
  set_.Open();
  Attach();
  set_.Append();
  PutKey();
}

// The key is typed into fields first, of a record that is given up: they know what a typed text
// means to their columns.
void TableRecord::Fetch() {
  Append();
  SelectWhere(KeyCondition());
  BindKey();
  set_.Close();
  set_.Open();
  Attach();
  if (set_.IsEmpty()) throw Exception("there is no record " + Title());
  if (set_.RecordCount() > 1) {
    throw Exception(
        Format("%s are %d records: the key has to find one", {Title(), set_.RecordCount()}));
  }
}

std::string ShownValue(TField& field, const Variant& value) {
  if (value.IsNull() || value.IsEmpty()) return std::string(kNothing);
  if (IsMoney(field) && FitsFormat(VarToStr(value))) return field.DisplayTextOf(value);
  return OneLine(ErrorValueText(value, field));
}

bool IsTypable(const TField& field) {
  const TFieldForm form = FormOf(field.DataType());
  return form != TFieldForm::Bytes && form != TFieldForm::None && !field.ReadOnly;
}

void StoreLine(TField& field, std::string_view line) {
  if (!IsTypable(field)) throw Exception(field.DisplayName() + " cannot be typed");
  const bool text = FormOf(field.DataType()) == TFieldForm::Text && IsSized(field.DataType());
  const auto room = static_cast<std::size_t>(field.Size());
  if (text && field.EditMask.empty() && room != 0 && line.size() > room) {
    throw Exception(
        Format("%s has room for %d letters, this has %d",
               {field.DisplayName(), field.Size(), static_cast<std::int64_t>(line.size())}));
  }
  field.SetTextOfLine(line);
}

}  // namespace kvshare::app
