// What the fields of dates, times and years show, and what they make of typed texts.
#include <cstdint>
#include <ctime>

#include "kvshare/dates/date.h"
#include "kvshare/dates/dbdate.h"
#include "kvshare/messages/catalogue.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare {

namespace {

constexpr std::string_view kNoDate = "  /  /    ";
constexpr std::string_view kNoDateTime = "  /  /       :  ";
constexpr std::string_view kNoTime = "  :  ";
constexpr std::string_view kMidnight = "00:00";

// Whether the text is that one, `/` and `:` in it also as the separators in force, in which a mask
// shows them.
bool IsText(std::string_view text, std::string_view usual) {
  if (text.size() != usual.size()) return false;
  for (std::size_t i = 0; i < usual.size(); ++i) {
    const bool date = usual[i] == '/' && text[i] == FormatSettings.DateSeparator;
    const bool time = usual[i] == ':' && text[i] == FormatSettings.TimeSeparator;
    if (text[i] != usual[i] && !date && !time) return false;
  }
  return true;
}

Word EraOffset() {
  return static_cast<Word>(YearBase);
}

int ThisYear() {
  return DecodeDate(Date()).Year;
}

bool IsWithin(std::int64_t year, std::int64_t reach, std::int64_t thisYear) {
  return year >= thisYear - reach && year <= thisYear + reach;
}

// Most years are so near that the local clock, which takes long to read, need not be asked: counted
// in years of the mean length, this one is at most two off.
bool IsNearThisYear(std::int64_t year) {
  constexpr std::int64_t kSecondsOfYear = 31'556'952;
  constexpr int kReach = 100;
  const std::int64_t roughly = 1970 + std::int64_t{std::time(nullptr)} / kSecondsOfYear;
  return IsWithin(year, kReach - 2, roughly) || IsWithin(year, kReach, ThisYear());
}

void CheckYear(std::int64_t year) {
  if (!IsNearThisYear(year)) throw Exception(LoadStr(rstrEYearOutOfRange));
}

[[noreturn]] void RefuseDate(std::string_view text) {
  throw Exception(Format(LoadStr(rstrEInvalidDate), {text}));
}

[[noreturn]] void RefuseTime(std::string_view text, const Exception& reason) {
  throw Exception(Format(LoadStr(rstrEInvalidTime), {text, "\r\n" + reason.Message()}));
}

// Two digits, or a number that is no day, month, hour or minute.
unsigned PairAt(std::string_view text, std::size_t at) {
  const unsigned tens = static_cast<unsigned char>(text[at]) - unsigned{'0'};
  const unsigned ones = static_cast<unsigned char>(text[at + 1]) - unsigned{'0'};
  return tens > 9 || ones > 9 ? 100 : tens * 10 + ones;
}

// The moment of digits that all stand where a mask has them, in the suite's own date format; at
// once what MomentAt makes of them.
bool TryUsualMoment(std::string_view text, std::int64_t year, TDateTime& moment) {
  const bool usual = text.size() >= kNoDateTime.size() && text[2] == '/' && text[5] == '/' &&
                     year >= 1000 && year <= 9999 && FormatSettings.DateSeparator == '/' &&
                     FormatSettings.ShortDateFormat == "dd/mm/yyyy";
  if (!usual) return false;
  const auto pair = [text](std::size_t at) { return static_cast<int>(PairAt(text, at)); };
  TDateTime date;
  TDateTime time;
  if (!TryEncodeDate(static_cast<int>(year), pair(3), pair(0), date) ||
      !TryEncodeTime(pair(11), pair(14), 0, 0, time)) {
    return false;
  }
  moment = JoinDateTime(date, time);
  return true;
}

// dd/mm/yyyy hh:nn with a Christian year in the place of the typed one.
TDateTime MomentAt(std::string_view text, std::int64_t year) {
  TDateTime moment;
  if (TryUsualMoment(text, year, moment)) return moment;
  const TDateTime date = StrToDate(std::string(Copy(text, 1, 6)) + IntToStr(year));
  const int hour = StrToInt(Copy(text, 12, 2));
  return JoinDateTime(date, EncodeTime(hour, StrToInt(Copy(text, 15, 2)), 0, 0));
}

TDateTime TimeOrRefusal(std::string_view text) {
  try {
    return StrToTime(text);
  } catch (const EConvertError& e) {
    RefuseTime(text, e);
  }
}

}  // namespace

void TKovraDbDate::KovraDateGetText(TField& Sender, std::string& Text, bool /*DisplayText*/) {
  Text.clear();
  TKovraDate::AppendShowDate(Text, Sender.IsNull() ? Date() : Sender.AsDateTime(), EraOffset());
}

void TKovraDbDate::KovraDateGetTextNull(TField& Sender, std::string& Text, bool DisplayText) {
  Text.clear();
  if (!Sender.IsNull()) KovraDateGetText(Sender, Text, DisplayText);
}

void TKovraDbDate::KovraDateTimeGetText(TField& Sender, std::string& Text, bool /*DisplayText*/) {
  Text.clear();
  if (!Sender.IsNull()) TKovraDate::AppendShowDatetime(Text, Sender.AsDateTime(), EraOffset());
}

void TKovraDbDate::KovraTimeGetText(TField& Sender, std::string& Text, bool /*DisplayText*/) {
  Text.clear();
  if (!Sender.IsNull()) TKovraDate::AppendShowTime(Text, Sender.AsDateTime());
}

void TKovraDbDate::KovraTimeNotNullGetText(TField& Sender, std::string& Text, bool DisplayText) {
  KovraTimeGetText(Sender, Text, DisplayText);
  if (Sender.IsNull()) Text = kMidnight;
}

void TKovraDbDate::KovraYearGetText(TField& Sender, std::string& Text, bool /*DisplayText*/) {
  const std::int64_t year = Sender.IsNull() ? ThisYear() : StrToInt(Sender.AsString());
  Text = IntToStr(year + YearBase);
}

void TKovraDbDate::KovraDateSetText(TField& Sender, std::string_view Text) {
  TDateTime date;
  if (IsText(Text, kNoDate)) {
    date = Date();
  } else if (!TKovraDate::StrToKovraDate(Text, EraOffset(), date)) {
    RefuseDate(Text);
  }
  CheckYear(DecodeDate(date).Year);
  Sender.SetAsDateTime(date);
}

void TKovraDbDate::KovraDateTimeSetText(TField& Sender, std::string_view Text) {
  if (IsText(Text, kNoDateTime)) return Sender.Clear();
  std::int32_t typed = 0;
  if (!TryStrToInt(Copy(Text, 7, 4), typed)) RefuseDate(Text);
  const std::int64_t year = std::int64_t{typed} - YearBase;
  CheckYear(year);
  try {
    Sender.SetAsDateTime(MomentAt(Text, year));
  } catch (const Exception& e) {
    RefuseTime(Text, e);
  }
}

void TKovraDbDate::KovraTimeSetText(TField& Sender, std::string_view Text) {
  if (IsText(Text, kNoTime)) return Sender.Clear();
  const bool midnight = IsText(Text, kMidnight);
  const TDateTime time = midnight ? TDateTime() : TimeOrRefusal(Text);
  const TFieldType type = Sender.DataType();
  const bool dateTime = type == TFieldType::ftTime || (midnight && type == TFieldType::ftDateTime);
  dateTime ? Sender.SetAsDateTime(time) : Sender.SetAsSQLTimeStamp(time);
}

void TKovraDbDate::KovraYearSetText(TField& Sender, std::string_view Text) {
  const std::int64_t typed = Text.empty() ? ThisYear() : StrToInt(Text);
  const std::int64_t year = typed - YearBase;
  CheckYear(year);
  Sender.SetAsString(IntToStr(year));
}

}  // namespace kvshare
