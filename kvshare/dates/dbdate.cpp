#include "kvshare/dates/dbdate.h"

#include "kvshare/database/dblog.h"
#include "kvshare/dates/date.h"
#include "kvshare/messages/catalogue.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatsettings.h"
#include "kvshare/rtl/variant.h"
#include "kvshare/settings/globals.h"

namespace kvshare {

namespace {

using D = TKovraDbDate;

constexpr std::string_view kDateMask = "00/00/0000;1;_";
constexpr std::string_view kDateNullMask = "99/99/9999;1;_";
constexpr std::string_view kTimeMask = "00:00;1;_";
constexpr std::string_view kTimeNullMask = "99:99;1;_";
constexpr std::string_view kDateTimeMask = "00/00/0000\\ 00:00;1;_";
constexpr std::string_view kDateTimeNullMask = "99/99/9999\\ 99:99;1;_";
constexpr std::string_view kYearFormat = "0000;1;_";
constexpr std::string_view kPairFormat = "00;1;_";

// A date with a time is read by the process's own order of day and month, and is shown day first.
void TraceOtherOrder(const TField& field) {
  const std::string& format = FormatSettings.ShortDateFormat;
  if (!BTrace || format.starts_with('d') || format.starts_with('D')) return;
  TKovraDbLog::WriteTraceFile(
      "Trace.log", "Dates",
      Format("%s: dates are read as %s, not day first: SetDefaultDateTimeFormat was not called",
             {field.FieldName(), format}));
}

void Attach(TClientDataSet& dataSet, std::string_view name, TFieldGetTextEvent getText,
            TFieldSetTextEvent setText, std::string_view mask) {
  TField* field = dataSet.FindField(name);
  if (field == nullptr) return;
  if (mask.find('/') != std::string_view::npos) TraceOtherOrder(*field);
  field->OnGetText = std::move(getText);
  field->OnSetText = std::move(setText);
  field->EditMask = mask;
}

void SetFormats(TField& field, std::string_view display, std::string_view edit) {
  if (!IsNumeric(field.DataType())) return;
  field.DisplayFormat = display;
  field.EditFormat = edit;
}

void AttachCheck(TClientDataSet& dataSet, std::string_view name, TFieldNotifyEvent validate) {
  TField* field = dataSet.FindField(name);
  if (field == nullptr) return;
  field->OnValidate = std::move(validate);
  SetFormats(*field, kPairFormat, kPairFormat);
}

// --- Checks

// A null field is first written as 0, which passes this check anew.
void PutZeroForNull(TField& field) {
  if (field.IsNull()) field.SetAsInteger(0);
}

void Refuse(bool refused, TMessage message) {
  if (refused) throw Exception(LoadStr(message));
}

// Months of a number of years and months, 11 for 5.11: its second two digits, nothing rounded. A
// real that is written with an exponent is below a month.
int MonthsOf(const TField& field) {
  const std::string years = field.AsString();
  const std::size_t point = years.find(FormatSettings.DecimalSeparator);
  if (point == std::string::npos || years.find_first_of("eE") != std::string::npos) return 0;
  const auto digit = [&](std::size_t at) { return at < years.size() ? years[at] - '0' : 0; };
  return digit(point + 1) * 10 + digit(point + 2);
}

}  // namespace

void D::KovraMonthValidate(TField& Sender) {
  const Variant month = Sender.Value();
  Refuse(month < 1 || month > 12, rstrEEnterValue1to12);
}

void D::qyValidate_Month(TField& Sender) {
  PutZeroForNull(Sender);
  const Variant month = Sender.Value();
  Refuse(month <= 0 || month > 12, rstrEEnterValue1to12);
}

void D::qyValidate_Day(TField& Sender) {
  PutZeroForNull(Sender);
  const Variant day = Sender.Value();
  Refuse(day <= 0 || day > 31, rstrEEnterValue0to31);
}

void D::qyValidate_0_12(TField& Sender) {
  PutZeroForNull(Sender);
  const Variant month = Sender.Value();
  Refuse(month < 0 || month > 12, rstrEEnterValue0to12);
}

void D::qyValidate_Year_Month(TField& Sender) {
  PutZeroForNull(Sender);
  const Variant years = Sender.Value();
  Refuse(years < 0 || years > 100, rstrEEnter0to100);
  Refuse(MonthsOf(Sender) > 11, rstrEYearMonth);
}

// --- Attaching

void D::SetDateField(TClientDataSet& DataSet, std::string_view FieldName) {
  Attach(DataSet, FieldName, KovraDateGetText, KovraDateSetText, kDateMask);
}

void D::SetDateNullField(TClientDataSet& DataSet, std::string_view FieldName) {
  Attach(DataSet, FieldName, KovraDateGetTextNull, KovraDateSetText, kDateNullMask);
}

void D::SetTimeField(TClientDataSet& DataSet, std::string_view FieldName) {
  Attach(DataSet, FieldName, KovraTimeGetText, KovraTimeSetText, kTimeMask);
}

void D::SetTimeNotNullField(TClientDataSet& DataSet, std::string_view FieldName) {
  Attach(DataSet, FieldName, KovraTimeNotNullGetText, KovraTimeSetText, kTimeMask);
}

void D::SetTimeNullField(TClientDataSet& DataSet, std::string_view FieldName) {
  Attach(DataSet, FieldName, KovraTimeGetText, KovraTimeSetText, kTimeNullMask);
}

void D::SetDateTimeField(TClientDataSet& DataSet, std::string_view FieldName) {
  Attach(DataSet, FieldName, KovraDateTimeGetText, KovraDateTimeSetText, kDateTimeMask);
}

void D::SetDateTimeNullField(TClientDataSet& DataSet, std::string_view FieldName) {
  Attach(DataSet, FieldName, KovraDateTimeGetText, KovraDateTimeSetText, kDateTimeNullMask);
}

void D::SetYearField(TClientDataSet& DataSet, std::string_view FieldName) {
  TField* field = DataSet.FindField(FieldName);
  if (field == nullptr) return;
  field->OnGetText = KovraYearGetText;
  field->OnSetText = KovraYearSetText;
  SetFormats(*field, kYearFormat, kYearFormat);
}

void D::SetYearMonthField(TClientDataSet& DataSet, std::string_view FieldName) {
  TField& field = DataSet.FieldByName(FieldName);
  field.OnValidate = qyValidate_Year_Month;
  SetFormats(field, dsplBahtEditMask, editBahtEditMask);
}

void D::SetDayField(TClientDataSet& DataSet, std::string_view FieldName) {
  AttachCheck(DataSet, FieldName, qyValidate_Day);
}

void D::SetMonthField(TClientDataSet& DataSet, std::string_view FieldName) {
  AttachCheck(DataSet, FieldName, qyValidate_Month);
}

}  // namespace kvshare
