// Dates as texts.
#include <array>
#include <cmath>
#include <cstdint>

#include "kvshare/dates/date.h"
#include "kvshare/messages/catalogue.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/digits.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatdatetime.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/settings/globals.h"

namespace kvshare {

namespace {

// A text under construction: years have at most five digits, 66078.
class DateText {
 public:
  void Pair(unsigned value) {  // 0 .. 99
    digits::PutPair(end_, value);
    end_ += 2;
  }
  // As StrZero(year, 4, 0) writes it: at least four digits.
  void Year(unsigned year) {
    if (year > 9999) *end_++ = static_cast<char>('0' + year / 10'000);
    Pair(year / 100 % 100);
    Pair(year % 100);
  }
  // The third and fourth of those digits.
  void ShortYear(unsigned year) { Pair((year > 9999 ? year / 10 : year) % 100); }
  void Separator(char separator) {
    if (separator != '\0') *end_++ = separator;
  }

  std::string_view Text() const {
    return {text_.data(), static_cast<std::size_t>(end_ - text_.data())};
  }

 private:
  std::array<char, 12> text_;
  char* end_ = text_.data();
};

DateText DayMonthYear(const TDateParts& date, unsigned offset, char separator) {
  DateText text;
  text.Pair(date.Day);
  text.Separator(separator);
  text.Pair(date.Month);
  text.Separator(separator);
  text.Year(date.Year + offset);
  return text;
}

enum class Part : std::uint8_t { Day, Month, Year, ShortYear };

// A fixed layout: three parts and the era of its years.
struct FixedLayout {
  std::array<Part, 3> parts;
  unsigned offset;
  char separator = '\0';
};

constexpr unsigned kChristian = 0;
constexpr unsigned kBuddhist = kBuddhistEraOffset;

template <FixedLayout layout>
std::string Fixed(TDateTime moment) {
  const TDateParts date = DecodeDate(moment);
  const unsigned year = date.Year + layout.offset;
  DateText text;
  for (std::size_t i = 0; i < layout.parts.size(); ++i) {
    if (i > 0) text.Separator(layout.separator);
    switch (layout.parts[i]) {
      case Part::Day:
        text.Pair(date.Day);
        break;
      case Part::Month:
        text.Pair(date.Month);
        break;
      case Part::Year:
        text.Year(year);
        break;
      case Part::ShortYear:
        text.ShortYear(year);
        break;
    }
  }
  return std::string(text.Text());
}

TDateParts PartsOrToday(TDateTime moment) {
  try {
    return DecodeDate(moment);
  } catch (const EExternal&) {
    return DecodeDate(Date());
  }
}

}  // namespace

void TKovraDate::AppendShowDate(std::string& Out, TDateTime D, Word Offset) {
  Out += DayMonthYear(PartsOrToday(D), Offset, FormatSettings.DateSeparator).Text();
}

std::string TKovraDate::ShowDate(TDateTime D, Word Offset) {
  return std::string(DayMonthYear(PartsOrToday(D), Offset, FormatSettings.DateSeparator).Text());
}

std::string TKovraDate::ShowFullDate(TDateTime D, Word Offset) {
  constexpr int kLetters = 2;  // of a day's name
  const std::string names = LoadStr(rstrThaiDayAbbrev);
  const std::string_view name = Copy(names, (DayOfWeek(D) - 1) * kLetters + 1, kLetters);
  return Format("%s %s", {name, ShowDate(D, Offset)});
}

void TKovraDate::AppendShowDatetime(std::string& Out, TDateTime D, Word Offset) {
  Out += DayMonthYear(DecodeDate(D), Offset, FormatSettings.DateSeparator).Text();
  Out += ' ';
  AppendShowTime(Out, D);
}

std::string TKovraDate::ShowDatetime(TDateTime D, Word Offset) {
  std::string text;
  AppendShowDatetime(text, D, Offset);
  return text;
}

std::string TKovraDate::ShowMonthYear(TDateTime D, Word Offset) {
  const TDateParts date = DecodeDate(D);
  return Format("%s, %d", {MonthName(date.Month), date.Year + int{Offset}});
}

std::string TKovraDate::ShowFullMonthYear(TDateTime D, int Offset, int Language) {
  const TDateParts date = DecodeDate(D);
  const TMonthNames& names = Language == 0 ? kThaiLongMonths : kEnglishLongMonths;
  const std::string_view name = date.Month == 0 ? std::string_view() : names[date.Month - 1u];
  return Format("%S, %d", {name, date.Year + std::int64_t{Offset}});
}

void TKovraDate::AppendShowTime(std::string& Out, TDateTime D) {
  const TTimeParts time = DecodeTime(D);
  DateText text;
  text.Pair(time.Hour);
  text.Separator(FormatSettings.TimeSeparator);
  text.Pair(time.Minute);
  Out += text.Text();
}

std::string TKovraDate::ShowTime(TDateTime D) {
  std::string text;
  AppendShowTime(text, D);
  return text;
}

std::string TKovraDate::MonthName(int Month) {
  return FormatDateTime("MMMM", EncodeDate(2000, Month, 1));
}

std::string TKovraDate::yymmdd19(TDateTime D) {
  return Fixed<FixedLayout{{Part::ShortYear, Part::Month, Part::Day}, kChristian}>(D);
}

std::string TKovraDate::ddmmyy19(TDateTime D) {
  return Fixed<FixedLayout{{Part::Day, Part::Month, Part::ShortYear}, kChristian}>(D);
}

std::string TKovraDate::yymmdd25(TDateTime D) {
  return Fixed<FixedLayout{{Part::ShortYear, Part::Month, Part::Day}, kBuddhist}>(D);
}

std::string TKovraDate::yyyymmdd19(TDateTime D) {
  return Fixed<FixedLayout{{Part::Year, Part::Month, Part::Day}, kChristian}>(D);
}

std::string TKovraDate::yyyymmdd25(TDateTime D) {
  return Fixed<FixedLayout{{Part::Year, Part::Month, Part::Day}, kBuddhist}>(D);
}

std::string TKovraDate::ddmmyyyy19(TDateTime D) {
  return Fixed<FixedLayout{{Part::Day, Part::Month, Part::Year}, kChristian}>(D);
}

std::string TKovraDate::ddmmyyyy25(TDateTime D) {
  return Fixed<FixedLayout{{Part::Day, Part::Month, Part::Year}, kBuddhist}>(D);
}

std::string TKovraDate::mmddyyyy19(TDateTime D) {
  return Fixed<FixedLayout{{Part::Month, Part::Day, Part::Year}, kChristian}>(D);
}

std::string TKovraDate::ddmmyyyysl25(TDateTime D) {
  return Fixed<FixedLayout{{Part::Day, Part::Month, Part::Year}, kBuddhist, '/'}>(D);
}

std::string TKovraDate::mmddyyyysl19(TDateTime D) {
  return Fixed<FixedLayout{{Part::Month, Part::Day, Part::Year}, kChristian, '/'}>(D);
}

std::string TKovraDate::KovraDateTimeToStr(TDateTime D) {
  return FormatDateTime("YYYYMMDDHHNN", D);
}

std::string TKovraDate::KovraTimeStampStr(TDateTime D) {
  constexpr int kToHundredths = 16;
  std::string stamp = FormatDateTime("YYYYMMDDHHNNSSZZZ", D);
  stamp.resize(kToHundredths);  // it has seventeen and more
  return stamp;
}

std::string TKovraDate::StrZero(double Value, int Width, int Decimals) {
  if (!(std::fabs(Value) < 0x1p63)) throw EInvalidOp();
  const auto whole = static_cast<std::int64_t>(Value);
  const int width = std::clamp(Width, -32'767, 32'767) - std::clamp(Decimals, -32'767, 32'767) -
                    (whole < 0 ? 1 : 0) - (Decimals < 1 ? 0 : 1);
  std::string text = Format(Format("%%%d.%dd", {width, width}), {whole});
  if (Decimals < 1) return text;
  const double magnitude = std::fabs(Value);
  const std::string fraction =
      Format(Format("%%%d.%df", {Decimals, Decimals}), {magnitude - std::trunc(magnitude)});
  return text.append(Copy(fraction, 2, Decimals + 1));
}

}  // namespace kvshare
