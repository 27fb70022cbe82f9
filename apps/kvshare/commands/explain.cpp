#include "apps/kvshare/commands/explain.h"

#include <algorithm>
#include <cstdlib>

#include "apps/kvshare/log/moments.h"
#include "apps/receipts/yearwarnings.h"
#include "kvshare/dates/date.h"
#include "kvshare/rtl/ascii.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::app {

namespace {

// A reader's rules, followed in words. Once one refuses, the explanation ends.
class Story {
 public:
  void Tell(std::string_view step) {
    if (!text_.empty()) text_ += "; ";
    text_ += step;
  }
  void Refuse(std::string_view reason) {
    Tell(reason);
    refused_ = true;
  }
  bool Refused() const { return refused_; }
  const std::string& Text() const { return text_; }

 private:
  std::string text_;
  bool refused_ = false;
};

struct Parts {
  std::string_view day, month, year;
};

struct Numbers {
  std::int32_t day = 0, month = 0, year = 0;
};

std::string Quoted(std::string_view text) {
  constexpr std::size_t kLongest = 40;
  const bool cut = text.size() > kLongest;
  return "'" + std::string(text.substr(0, kLongest)) + (cut ? "...'" : "'");
}

std::int32_t ReadPart(Story& story, std::string_view name, std::string_view part) {
  std::int32_t number = 0;
  if (!story.Refused() && !TryStrToInt(part, number)) {
    story.Refuse(Format("the %s %s is no number", {name, Quoted(part)}));
  }
  return number;
}

Numbers ReadParts(Story& story, const Parts& parts) {
  Numbers numbers;
  numbers.day = ReadPart(story, "day", parts.day);
  numbers.month = ReadPart(story, "month", parts.month);
  numbers.year = ReadPart(story, "year", parts.year);
  return numbers;
}

// The end of every story: a date of the Christian calendar or none.
void CheckDate(Story& story, std::int64_t year, int month, int day) {
  if (story.Refused()) return;
  if (year < 1 || year > 9999) return story.Refuse("the years are 1 to 9999");
  const int days = DaysInMonth(static_cast<int>(year), month);
  if (days == 0) return story.Refuse(Format("there is no month %d", {month}));
  if (day < 1 || day > days) {
    story.Refuse(Format("month %d of %d has %d days, and no day %d", {month, year, days, day}));
  }
}

// The three parts around the first two separators, or a refusal.
struct Split {
  std::string_view first, second, third;
};
Split SplitAt(Story& story, std::string_view text, char separator) {
  const std::size_t one = text.find(separator);
  const std::size_t two = one == std::string_view::npos ? one : text.find(separator, one + 1);
  if (two != std::string_view::npos) {
    return {text.substr(0, one), text.substr(one + 1, two - one - 1), text.substr(two + 1)};
  }
  const std::string_view mark(&separator, 1);
  story.Refuse(one == std::string_view::npos
                   ? Format("it has no %s between day, month and year", {mark})
                   : Format("it has only one %s, two are needed", {mark}));
  return {};
}

void TakeOff(Story& story, std::int64_t& year, int offset) {
  if (offset == 0) return;
  story.Tell(Format("%d less %d is %d", {year, offset, year - offset}));
  year -= offset;
}

// The year of a typed date and whether it has two digits.
struct TypedYear {
  std::int64_t year = 0;
  bool shortened = false;
};
TypedYear ReadYear(Story& story, std::int32_t typed, Word offset) {
  const auto year = static_cast<Word>(typed);
  if (year != typed) {
    story.Tell(Format("the year %d counts as the 16-bit number %d", {typed, year}));
  }
  TypedYear result{year, year < 100};
  if (result.shortened) {
    result.year += offset != 0 ? 2500 : 2000;
    story.Tell(Format("the year %d stands for %d", {year, result.year}));
  }
  TakeOff(story, result.year, offset);
  return result;
}

std::string OrderOf(std::string_view first) {
  if (first.size() == 2) return "day first";
  if (first.size() == 4) return "year first";
  return Format("year first, as the first part has not two characters but %d",
                {static_cast<std::int64_t>(first.size())});
}

// True for a date with a two-digit year.
bool TellTyped(Story& story, std::string_view text, Word offset) {
  const bool slashes = text.find('/') != std::string_view::npos;
  const bool dashes = text.find('-') != std::string_view::npos;
  if (!slashes && !dashes) {
    story.Refuse("it has neither / nor - between day, month and year");
    return false;
  }
  const Split split = SplitAt(story, text, slashes ? '/' : '-');
  if (story.Refused() && slashes && dashes) story.Tell("beside a / dashes do not count");
  if (story.Refused()) return false;
  const bool dayFirst = split.first.size() == 2;
  story.Tell(OrderOf(split.first));
  const Numbers numbers =
      ReadParts(story, dayFirst ? Parts{split.first, split.second, split.third}
                                : Parts{split.third, split.second, split.first});
  if (story.Refused()) return false;
  const TypedYear year = ReadYear(story, numbers.year, offset);
  CheckDate(story, year.year, numbers.month, numbers.day);
  return year.shortened;
}

void TellLoose(Story& story, std::string_view text, int currentYear) {
  const Split split = SplitAt(story, text, '/');
  if (story.Refused()) return;
  story.Tell("day first");
  const Numbers numbers = ReadParts(story, {split.first, split.second, split.third});
  if (story.Refused()) return;
  std::int64_t year = numbers.year;
  const std::int64_t distance = std::abs(year - currentYear);
  const int times = distance > 1000 ? 2 : distance > 100 ? 1 : 0;
  if (times != 0) {
    story.Tell(Format("the year %d is more than %d years from %d and taken for one %s",
                      {year, times == 2 ? 1000 : 100, currentYear,
                       times == 2 ? "with 543 added twice" : "of the Buddhist era"}));
  } else {
    story.Tell(Format("the year %d is near %d and taken for a Christian one", {year, currentYear}));
  }
  TakeOff(story, year, times * kBuddhistEraOffset);
  CheckDate(story, year, numbers.month, numbers.day);
}

// Eight digits at the start, or yyyy?mm?dd.
bool CouldBeStamp(std::string_view text) {
  if (text.size() < 8 || !AreDigits(text.substr(0, 4))) return false;
  const bool separated =
      text.size() == 10 && !AreDigits(text.substr(4, 1)) && !AreDigits(text.substr(7, 1));
  return separated || AreDigits(text.substr(4, 4));
}

void TellStamp(Story& story, std::string_view text) {
  const bool separated = text.size() == kSeparatedStamp;
  story.Tell(separated ? "ten characters: year 1 to 4, month 6 and 7, day 9 and 10"
                       : "year 1 to 4, month 5 and 6, day 7 and 8");
  const int month = separated ? 6 : 5;
  const Numbers numbers =
      ReadParts(story, {Copy(text, separated ? 9 : 7, 2), Copy(text, month, 2), Copy(text, 1, 4)});
  CheckDate(story, numbers.year, numbers.month, numbers.day);
  if (story.Refused() || separated || text.size() < kStampWithTime) return;
  story.Tell("hour 9 and 10, minute 11 and 12");
  const std::int32_t hour = ReadPart(story, "hour", Copy(text, 9, 2));
  const std::int32_t minute = ReadPart(story, "minute", Copy(text, 11, 2));
  TDateTime ignored;
  if (!story.Refused() && !TryEncodeTime(hour, minute, 0, 0, ignored)) {
    story.Refuse(Format("there is no time %.2d:%.2d", {hour, minute}));
  }
}

void WarnOfEra(Reading& reading, Word offset) {
  std::string warning = receipts::EraWarning(*reading.moment, offset);
  if (!warning.empty()) reading.warnings.push_back(std::move(warning));
}

Reading Conclude(std::string_view reader, std::optional<TDateTime> moment, const Story& story) {
  Reading reading{reader, moment, story.Text(), {}};
  if (story.Refused() == moment.has_value()) reading.why = kUnexplained;
  return reading;
}

Reading ExplainTyped(std::string_view reader, std::string_view text, Word offset, TDateTime today) {
  constexpr int kFarAhead = 20;
  Story story;
  const bool shortYear = TellTyped(story, text, offset);
  TDateTime date;
  const bool read = TKovraDate::StrToKovraDate(text, offset, date);
  Reading reading = Conclude(reader, read ? std::optional(date) : std::nullopt, story);
  if (!read) return reading;
  WarnOfEra(reading, offset);
  if (shortYear && DecodeDate(date).Year > DecodeDate(today).Year + kFarAhead) {
    reading.warnings.push_back(Format("the two-digit year lands more than %d years ahead, in %d",
                                      {kFarAhead, DecodeDate(date).Year}));
  }
  return reading;
}

Reading ExplainLoose(std::string_view text, TDateTime today) {
  const int currentYear = DecodeDate(today).Year;
  Story story;
  TellLoose(story, text, currentYear);
  TDateTime date;
  const bool read = TKovraDate::ForceStrToKovraDateAsOf(text, currentYear, date);
  Reading reading = Conclude("loose", read ? std::optional(date) : std::nullopt, story);
  if (read) WarnOfEra(reading, 0);
  return reading;
}

Reading ExplainStamp(std::string_view text) {
  Story story;
  TellStamp(story, text);
  std::optional<TDateTime> moment;
  try {
    moment = ReadStamp(text);
  } catch (const EConvertError&) {
    moment.reset();  // the story tells why
  }
  Reading reading = Conclude("stamp", moment, story);
  if (moment) WarnOfEra(reading, 0);
  return reading;
}

}  // namespace

std::vector<Reading> ExplainDate(std::string_view text, TDateTime today) {
  std::vector<Reading> readings;
  readings.push_back(ExplainTyped("era 543", text, kBuddhistEraOffset, today));
  readings.push_back(ExplainTyped("era 0", text, 0, today));
  readings.push_back(ExplainLoose(text, today));
  if (CouldBeStamp(text)) readings.push_back(ExplainStamp(text));
  return readings;
}

}  // namespace kvshare::app
