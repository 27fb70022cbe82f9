// Dates, times and years in dataset fields, shown and typed in the era of YearBase.
//
// A database keeps Christian dates; users read and type the years of their own calendar. These
// handlers stand between the two at each field, and the Set...Field methods put them there:
//
//   TKovraDbDate::SetDateNullField(invoice, "PAIDDAY");  // 15/03/2567 <-> 15 March 2024
//
// A program calls SetEditMaskAndFormatStr, for the era, and SetDefaultDateTimeFormat, for the order
// of day and month, before it attaches a handler: a date with a time is read by the process's short
// date, which another locale begins with the month. With BTrace on, attaching a date where that
// does not begin with the day writes a line to Trace.log in ExePath.
#pragma once

#include <string>
#include <string_view>

#include "kvshare/data/client/clientdataset.h"
#include "kvshare/data/fields/field.h"
#include "kvshare/export.h"
#include "kvshare/settings/globals.h"

namespace kvshare {

// Stateless; every operation is static. The library never creates an instance.
//
// A refusal throws Exception with the message named, and the field keeps its value. "This year" is
// the Christian year of the local clock, and its range is a hundred years either way, both ends in.
class KVSHARE_API TKovraDbDate {
 public:
  // --- OnGetText: the same text to be shown and to be edited. Separators come from
  // FormatSettings, the year of a date has at least four digits. Null is "" where not said
  // otherwise.

  static void KovraDateGetText(TField& Sender, std::string& Text, bool DisplayText);  // null: today
  static void KovraDateGetTextNull(TField& Sender, std::string& Text, bool DisplayText);
  static void KovraDateTimeGetText(TField& Sender, std::string& Text, bool DisplayText);
  static void KovraTimeGetText(TField& Sender, std::string& Text, bool DisplayText);  // 14:05
  // Null: 00:00
  static void KovraTimeNotNullGetText(TField& Sender, std::string& Text, bool DisplayText);
  // Of null this year. The value is read as StrToInt reads it, with its error.
  static void KovraYearGetText(TField& Sender, std::string& Text, bool DisplayText);

  // --- OnSetText. What an edit mask gives of nothing typed is "  /  /    ", "  /  /       :  " or
  // "  :  ", with the separators of FormatSettings as well.

  // Nothing typed: today. Else what TKovraDate::StrToKovraDate reads. Refuses with
  // rstrEInvalidDate, rstrEYearOutOfRange.
  static void KovraDateSetText(TField& Sender, std::string_view Text);
  // Nothing typed: null. Else dd/mm/yyyy hh:nn, each part at its place; the day is read as
  // StrToDate reads it. A year that is no number gives rstrEInvalidDate, one out of range
  // rstrEYearOutOfRange, and all else, also what refuses the value behind that, rstrEInvalidTime
  // with the reason.
  static void KovraDateTimeSetText(TField& Sender, std::string_view Text);
  // Nothing typed: null. Else what StrToTime reads; rstrEInvalidTime with the reason. Midnight goes
  // to a time or date-time field as a date-time, another time to a time field; all else goes as a
  // time stamp, which a field of text refuses.
  static void KovraTimeSetText(TField& Sender, std::string_view Text);
  // Empty: this year's Christian number, taken as if typed. Else what StrToInt reads, with its
  // error. rstrEYearOutOfRange.
  static void KovraYearSetText(TField& Sender, std::string_view Text);

  // --- OnValidate. Those of qyValidate_ first put 0 into a field that is null.

  static void KovraMonthValidate(TField& Sender);  // 1 .. 12, not null: rstrEEnterValue1to12
  static void qyValidate_Month(TField& Sender);    // above 0, to 12: rstrEEnterValue1to12
  static void qyValidate_Day(TField& Sender);      // above 0, to 31: rstrEEnterValue0to31
  static void qyValidate_0_12(TField& Sender);     // 0 .. 12: rstrEEnterValue0to12
  // Years before the point and months as two digits behind it: 5.09 is five years and nine months.
  // 0 .. 100 (rstrEEnter0to100), months to 11 (rstrEYearMonth); further digits do not
  // count, 5.11999 has eleven.
  static void qyValidate_Year_Month(TField& Sender);

  // --- Attaching to a field by its name, letter case ignored. Nothing happens where the dataset
  // lacks the field, but SetYearMonthField throws `Field '%s' not found`. The fields of a closed
  // dataset vanish: attach after opening.

  static void SetDateField(TClientDataSet& DataSet, std::string_view FieldName);
  static void SetDateNullField(TClientDataSet& DataSet, std::string_view FieldName);
  static void SetTimeField(TClientDataSet& DataSet, std::string_view FieldName);
  static void SetTimeNotNullField(TClientDataSet& DataSet, std::string_view FieldName);
  static void SetTimeNullField(TClientDataSet& DataSet, std::string_view FieldName);
  static void SetDateTimeField(TClientDataSet& DataSet, std::string_view FieldName);
  static void SetDateTimeNullField(TClientDataSet& DataSet, std::string_view FieldName);
  // A numeric field also gets number formats; the formats of years, days and months end in `;1;_`,
  // which as a number format shows a negative as 1 and zero as `_`.
  static void SetYearField(TClientDataSet& DataSet, std::string_view FieldName);
  static void SetYearMonthField(TClientDataSet& DataSet, std::string_view FieldName);
  static void SetDayField(TClientDataSet& DataSet, std::string_view FieldName);
  static void SetMonthField(TClientDataSet& DataSet, std::string_view FieldName);
};

}  // namespace kvshare
