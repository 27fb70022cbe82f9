// Any bytes typed into fields of dates, times and years. What is taken shows and is taken again as
// the same value; a refusal has one of the messages that users know, and leaves the field as it
// was. The first byte chooses the field.
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/dates/dbdate.h"
#include "kvshare/messages/catalogue.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatsettings.h"
#include "kvshare/settings/globals.h"

namespace {

using kvshare::LoadStr;
using kvshare::TClientDataSet;
using kvshare::TField;
using enum kvshare::TFieldType;
using D = kvshare::TKovraDbDate;

void Require(bool holds) {
  if (!holds) std::abort();
}

struct Row {
  kvshare::TFieldType type;
  void (*attach)(TClientDataSet&, std::string_view);
  bool refusesDates;
  bool refusesTimes;
};

constexpr std::array<Row, 8> kRows = {{
    {ftDate, D::SetDateField, true, false},
    {ftTimeStamp, D::SetDateNullField, true, false},
    {ftDateTime, D::SetDateTimeField, true, true},
    {ftTimeStamp, D::SetDateTimeNullField, true, true},
    {ftTime, D::SetTimeField, false, true},
    {ftDateTime, D::SetTimeNullField, false, true},
    {ftTimeStamp, D::SetTimeNotNullField, false, true},
    {ftInteger, D::SetYearField, false, false},
}};

bool IsKnown(const kvshare::Exception& error, const Row& row, std::string_view text) {
  const std::string& message = error.Message();
  const std::string time = kvshare::Format(LoadStr(kvshare::rstrEInvalidTime), {text, "\r\n"});
  const bool date = message == kvshare::Format(LoadStr(kvshare::rstrEInvalidDate), {text});
  if (message == LoadStr(kvshare::rstrEYearOutOfRange))
    return row.refusesDates || !row.refusesTimes;
  if (date) return row.refusesDates;
  if (message.starts_with(time)) return row.refusesTimes;
  const bool year = !row.refusesDates && !row.refusesTimes;
  return year && dynamic_cast<const kvshare::EConvertError*>(&error) != nullptr;
}

void CheckTyped(TField& field, const Row& row, std::string_view text) {
  const std::string before = field.AsString();
  try {
    field.SetText(text);
  } catch (const kvshare::Exception& e) {
    Require(IsKnown(e, row, text) && field.AsString() == before);
    return;
  }
  const std::string value = field.AsString();
  if (field.IsNull()) return;
  const std::string shown = field.Text();
  field.SetText(shown);
  Require(field.Text() == shown);
  Require(row.type != ftDate || field.AsString() == value);  // others have more than they show
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  kvshare::FormatSettings = kvshare::TFormatSettings::UsEnglish();
  kvshare::FormatSettings.ShortDateFormat = "dd/mm/yyyy";
  kvshare::FormatSettings.LongTimeFormat = "hh:nn:ss";
  kvshare::YearBase = (data[0] & 8U) != 0 ? 0 : 543;
  const Row& row = kRows.at(data[0] % kRows.size());
  TClientDataSet set;
  set.FieldDefs().Add("DAY", row.type);
  set.CreateDataSet();
  set.Append();
  row.attach(set, "DAY");
  CheckTyped(set.Fields(0), row, {reinterpret_cast<const char*>(data) + 1, size - 1});
  return 0;
}
