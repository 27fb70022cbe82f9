// `kvshare date`.
#include <array>
#include <memory>

#include "apps/kvshare/commands/commands.h"
#include "apps/kvshare/log/moments.h"
#include "kvshare/dates/date.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/formatsettings.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::app {

namespace {

constexpr std::string_view kShowExamples =
    "  kvshare date show --era 543 2003-07-15            15/07/2546\n"
    "  kvshare date show --layout yyyymmdd25 2003-07-15  25460715\n"
    "  kvshare date show --layout datetime --era 0 2003-07-15T14:05\n"
    "                                                    15/07/2003 14:05\n"
    "  kvshare date show --layout fullmonthyear --language en --era 0 2003-07-15\n"
    "                                                    JULY, 2003\n";

constexpr std::string_view kParseExamples =
    "  kvshare date parse --era 543 15/07/2546           2003-07-15\n"
    "  kvshare date parse --loose 15/07/2546             2003-07-15\n"
    "  kvshare date parse --stamp 200307151405           2003-07-15T14:05:00\n";

constexpr std::string_view kMonthExamples =
    "  kvshare date month 1 2003-01-31                   2003-02-28\n"
    "  kvshare date month -1 2003-03-31                  2003-02-28\n"
    "  kvshare date month 12 2003-01-31                  2004-01-31\n";

struct DateOptions {
  std::string era;
  std::string layout = "date";
  std::string language;
  bool loose = false;
  bool stamp = false;
};

// What a layout needs besides the moment.
struct Era {
  Word offset = 0;
  int language = 0;  // 0 Thai
};

using D = TKovraDate;
using Shower = std::string (*)(TDateTime, const Era&);

template <std::string (*Show)(TDateTime)>
std::string Plain(TDateTime moment, const Era& /*unused*/) {
  return Show(moment);
}

template <std::string (*Show)(TDateTime, Word)>
std::string WithEra(TDateTime moment, const Era& era) {
  return Show(moment, era.offset);
}

std::string FullMonthYear(TDateTime moment, const Era& era) {
  return D::ShowFullMonthYear(moment, era.offset, era.language);
}

struct LayoutRow {
  std::string_view name;
  Shower show;
};

constexpr std::array kLayouts = {
    LayoutRow{"date", WithEra<D::ShowDate>},
    LayoutRow{"full", WithEra<D::ShowFullDate>},
    LayoutRow{"datetime", WithEra<D::ShowDatetime>},
    LayoutRow{"monthyear", WithEra<D::ShowMonthYear>},
    LayoutRow{"fullmonthyear", FullMonthYear},
    LayoutRow{"time", Plain<D::ShowTime>},
    LayoutRow{"stamp", Plain<D::KovraDateTimeToStr>},
    LayoutRow{"timestamp", Plain<D::KovraTimeStampStr>},
    LayoutRow{"yymmdd19", Plain<D::yymmdd19>},
    LayoutRow{"ddmmyy19", Plain<D::ddmmyy19>},
    LayoutRow{"yymmdd25", Plain<D::yymmdd25>},
    LayoutRow{"yyyymmdd19", Plain<D::yyyymmdd19>},
    LayoutRow{"yyyymmdd25", Plain<D::yyyymmdd25>},
    LayoutRow{"ddmmyyyy19", Plain<D::ddmmyyyy19>},
    LayoutRow{"ddmmyyyy25", Plain<D::ddmmyyyy25>},
    LayoutRow{"mmddyyyy19", Plain<D::mmddyyyy19>},
    LayoutRow{"ddmmyyyysl25", Plain<D::ddmmyyyysl25>},
    LayoutRow{"mmddyyyysl19", Plain<D::mmddyyyysl19>},
};

std::string LayoutNames() {
  std::string names;
  for (const LayoutRow& row : kLayouts) names.append(names.empty() ? "" : " ").append(row.name);
  return names;
}

Shower LayoutOf(std::string_view name) {
  for (const LayoutRow& row : kLayouts) {
    if (SameText(row.name, name)) return row.show;
  }
  RefuseUsage("--layout", "is one of " + LayoutNames());
}

// Month names of the language asked for, for this run of the command.
int UseLanguage(std::string_view name) {
  if (name.empty()) return 0;
  const bool english = SameText(name, "en");
  if (!english && !SameText(name, "th")) RefuseUsage("--language", "is th or en");
  FormatSettings.LongMonthNames =
      (english ? TFormatSettings::UsEnglish() : TFormatSettings::Thai()).LongMonthNames;
  return english ? 1 : 0;
}

Transform MakeShow(const DateOptions& options) {
  const Shower show = LayoutOf(options.layout);
  const Era era{UsageEra(options.era), UseLanguage(options.language)};
  return [show, era](std::string_view item, Row& row) {
    const TDateTime moment = ParseIso(item);
    if (row.Json()) AppendIso(row.Member("date"), moment);
    row.Cell("text") = show(moment, era);
  };
}

TDateTime ReadTyped(std::string_view text, const DateOptions& options, Word offset) {
  if (options.stamp) return ReadStamp(text);
  TDateTime date;
  const bool read =
      options.loose ? D::ForceStrToKovraDate(text, date) : D::StrToKovraDate(text, offset, date);
  if (!read) throw EConvertError("'" + std::string(text.substr(0, 80)) + "' is not a valid date");
  return date;
}

Transform MakeParse(const DateOptions& options) {
  return [options, offset = UsageEra(options.era)](std::string_view text, Row& row) {
    const TDateTime date = ReadTyped(text, options, offset);
    if (row.Json()) row.Member("text") = text;
    AppendIso(row.Cell("date"), date);
  };
}

// The same day so many months away, or that month's last one. Throws EConvertError past the years 1
// to 9999.
TDateTime MonthsAway(TDateTime date, std::int32_t months) {
  constexpr std::int32_t kYear = 12;
  const TDateParts parts = DecodeDate(date);
  const std::int32_t month = parts.Year * kYear + parts.Month - 1 + months;
  if (month < kYear || month >= 10'000 * kYear) {
    throw EConvertError("the years are 1 to 9999");
  }
  return D::Encodedatedd(static_cast<Word>(month / kYear), static_cast<Word>(month % kYear + 1),
                         static_cast<Word>(parts.Day));
}

Transform MakeMonth(const std::string& delta) {
  constexpr std::int32_t kMost = 9998 * 12;
  std::int32_t months = 0;
  if (!TryStrToInt(delta, months) || months < -kMost || months > kMost) {
    RefuseUsage("DELTA", "is a number of months");
  }
  return [months](std::string_view item, Row& row) {
    const TDateTime date = ParseIso(item);
    if (row.Json()) AppendIso(row.Member("date"), date);
    AppendIso(row.Cell("result"), MonthsAway(date, months));
  };
}

void DeclareShow(Command date, Plan& plan) {
  const auto options = std::make_shared<DateOptions>();
  const Command command =
      AddCommand(date, plan, "show", "Dates as the suite's programs show them", kShowExamples);
  AddEra(command, options->era);
  command.AddOption("--layout", options->layout, LayoutNames()).TypeName("NAME");
  command.AddOption("--language", options->language, "Month names in Thai or English")
      .TypeName("th|en");
  AddItems(command, plan, "DATE", "yyyy-mm-dd or yyyy-mm-ddThh:mm:ss, Christian years");
  command.OnParsed([options, &plan] { plan.transform = MakeShow(*options); });
}

void DeclareParse(Command date, Plan& plan) {
  const auto options = std::make_shared<DateOptions>();
  const Command command =
      AddCommand(date, plan, "parse", "Typed dates as yyyy-mm-dd, Christian years", kParseExamples);
  AddEra(command, options->era);
  const Option loose =
      command.AddFlag("--loose", options->loose, "Day first; guess the era by the year");
  command.AddFlag("--stamp", options->stamp, "Stamps of 8, 10 or 12 and more bytes")
      .Excludes(loose);
  AddItems(command, plan, "TEXT", "dd/mm/yyyy, yyyy/mm/dd, with dashes too");
  command.OnParsed([options, &plan] { plan.transform = MakeParse(*options); });
}

void DeclareMonth(Command date, Plan& plan) {
  const auto delta = std::make_shared<std::string>();
  const Command command =
      AddCommand(date, plan, "month", "The same day of another month", kMonthExamples);
  command.AddOption("DELTA", *delta, "Months: 1 for the next one, -12 for a year back").Required();
  AddItems(command, plan, "DATE", "yyyy-mm-dd");
  command.OnParsed([delta, &plan] { plan.transform = MakeMonth(*delta); });
}

}  // namespace

void DeclareDate(Command parent, Plan& plan) {
  const Command date = parent.AddCommand("date", "Dates in the Buddhist and the Christian era");
  date.RequireCommand();
  DeclareShow(date, plan);
  DeclareParse(date, plan);
  DeclareMonth(date, plan);
  DeclareDateExplain(date, plan);
}

}  // namespace kvshare::app
