#include "kvshare/rtl/formatdatetime.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <span>

#include "kvshare/rtl/calendar.h"
#include "kvshare/rtl/digits.h"
#include "kvshare/rtl/strutils.h"

namespace kvshare::inline rtl {

namespace {

constexpr std::size_t kLimit = 256;

// Room for a result. A byte or a pair of digits is written before it is cut, hence the slack.
using Buffer = std::array<char, kLimit + 2>;

// Where the next byte goes; past the limit everything is dropped. Copied from scan to scan, so that
// it lives in registers.
class Output {
 public:
  explicit Output(Buffer& buffer) : at_(buffer.data()), limit_(at_ + kLimit) {}

  bool Full() const { return at_ == limit_; }
  std::string_view Text() const { return {limit_ - kLimit, kLimit - Room()}; }

  void Put(char c) {
    *at_ = c;
    Grow(1);
  }
  void Put(std::string_view part) {
    const std::size_t count = std::min(part.size(), Room());
    std::copy_n(part.data(), count, at_);
    Grow(count);
  }
  void PutNumber(unsigned value, std::size_t minDigits) {  // value < 65536, minDigits <= 4
    if (minDigits == 2 && value < 100) return PutPair(value);
    if (minDigits == 4 && value < 10'000) {
      PutPair(value / 100);
      return PutPair(value % 100);
    }
    std::array<char, 5> figures;
    figures.fill('0');
    char* const end = figures.data() + figures.size();
    const char* first = std::min(digits::PutBackward(end, value), end - minDigits);
    Put(std::string_view(first, static_cast<std::size_t>(end - first)));
  }

 private:
  std::size_t Room() const { return static_cast<std::size_t>(limit_ - at_); }
  void PutPair(unsigned value) {
    digits::PutPair(at_, value);
    Grow(2);
  }
  void Grow(std::size_t count) { at_ += std::min(count, Room()); }

  char* at_;
  char* limit_;
};

constexpr bool IsLetter(char lowCase) {
  return lowCase >= 'a' && lowCase <= 'z';
}

constexpr bool IsQuote(char c) {
  return c == '\'' || c == '"';
}

bool StartsWith(std::string_view text, std::string_view lowCaseWord) {
  return text.size() >= lowCaseWord.size() &&
         std::ranges::equal(lowCaseWord, text.substr(0, lowCaseWord.size()), {}, {}, LowCase);
}

// A place of the noon marker: what it prints lies in the pattern itself, except for `ampm`.
constexpr std::string_view kHalves = "am/pm";
constexpr std::string_view kInitials = "a/p";
constexpr std::string_view kNamedHalves = "ampm";

bool StartsWithNoonMarker(std::string_view text) {
  return StartsWith(text, kHalves) || StartsWith(text, kInitials) || StartsWith(text, kNamedHalves);
}

// Looks ahead of an hour: as far as the next `h`, be it quoted, or the first `a` outside quotes.
bool NoonMarkerAhead(std::string_view rest) {
  char quote = '\0';
  for (std::size_t i = 0; i < rest.size(); ++i) {
    const char c = LowCase(rest[i]);
    if (c == 'h') return false;
    if (c == 'a' && quote == '\0') return StartsWithNoonMarker(rest.substr(i));
    if (c == quote) {
      quote = '\0';
    } else if (quote == '\0' && IsQuote(c)) {
      quote = c;
    }
  }
  return false;
}

struct Moment : calendar::DayAndTime {
  TDateParts date = calendar::DateOfDay(day);

  // The number of the day's name; none for a moment before year 1, which has no date either.
  int WeekDay() const { return date.Day == 0 ? 0 : calendar::WeekDayOf(day); }
};

enum class Level : std::uint8_t { Given, Expanded };

// One pattern from left to right. A pattern of the settings, which a token like `c` stands for, is
// scanned on its own, without the state of the one around it.
template <Level level>
class PatternScan {
 public:
  PatternScan(std::string_view pattern, const Moment& moment, const TFormatSettings& settings,
              Output out)
      : moment_(moment), settings_(settings), out_(out), pattern_(pattern) {}

  // Where the output ends.
  Output Run() {
    while (at_ < pattern_.size() && !out_.Full()) PutToken();
    return out_;
  }

 private:
  void PutToken();
  void PutLetterToken(char letter);
  void PutDay(std::size_t run);
  void PutMonth(std::size_t run);
  void PutYear(std::size_t run);
  void PutHour(std::size_t run);
  void PutNoonMarkerOrDayName();
  void PutHalf(std::size_t halfSize);
  void PutQuoted();
  void PutSeparator(char separator);
  void PutName(std::span<const std::string> names, int number);
  void PutGeneral();
  void Expand([[maybe_unused]] std::string_view pattern);

  // The token at hand: how often its byte is repeated. Moves past it.
  std::size_t TakeRun() {
    const std::size_t start = at_;
    const char c = pattern_[start];
    do ++at_;
    while (at_ < pattern_.size() && pattern_[at_] == c);
    return at_ - start;
  }
  std::string_view Rest() const { return pattern_.substr(at_); }
  bool Afternoon() const { return moment_.Hour() >= 12; }

  const Moment& moment_;
  const TFormatSettings& settings_;
  Output out_;
  std::string_view pattern_;
  std::size_t at_ = 0;
  char lastLetter_ = '\0';
  bool twelveHours_ = false;
};

template <Level level>
void PatternScan<level>::PutToken() {
  const char c = pattern_[at_];
  char letter = LowCase(c);
  if (IsLetter(letter)) {
    if (letter == 'm' && lastLetter_ == 'h') letter = 'n';
    lastLetter_ = letter;
    PutLetterToken(letter);
  } else if (c == '/') {
    PutSeparator(settings_.DateSeparator);
  } else if (c == ':') {
    PutSeparator(settings_.TimeSeparator);
  } else if (IsQuote(c)) {
    PutQuoted();
  } else {
    out_.Put(c);
    ++at_;
  }
}

template <Level level>
void PatternScan<level>::PutLetterToken(char letter) {
  const auto shortNumber = [this](Word value, std::size_t most) {
    out_.PutNumber(value, std::min(TakeRun(), most));
  };
  switch (letter) {
    case 'a':
      return PutNoonMarkerOrDayName();
    case 'c':
      TakeRun();
      return PutGeneral();
    case 'd':
      return PutDay(TakeRun());
    case 'e':
      TakeRun();
      return out_.PutNumber(moment_.date.Year, 4);
    case 'g':
      TakeRun();
      return;
    case 'h':
      return PutHour(TakeRun());
    case 'm':
      return PutMonth(TakeRun());
    case 'n':
      return shortNumber(moment_.Minute(), 2);
    case 's':
      return shortNumber(moment_.Second(), 2);
    case 't':
      return Expand(TakeRun() == 1 ? settings_.ShortTimeFormat : settings_.LongTimeFormat);
    case 'y':
      return PutYear(TakeRun());
    case 'z':
      return shortNumber(moment_.MilliSecond(), 3);
    default:
      out_.Put(pattern_[at_++]);
  }
}

template <Level level>
void PatternScan<level>::PutDay(std::size_t run) {
  if (run <= 2) return out_.PutNumber(moment_.date.Day, run);
  if (run == 3) return PutName(settings_.ShortDayNames, moment_.WeekDay());
  if (run == 4) return PutName(settings_.LongDayNames, moment_.WeekDay());
  Expand(run == 5 ? settings_.ShortDateFormat : settings_.LongDateFormat);
}

template <Level level>
void PatternScan<level>::PutMonth(std::size_t run) {
  if (run <= 2) return out_.PutNumber(moment_.date.Month, run);
  PutName(run == 3 ? settings_.ShortMonthNames : settings_.LongMonthNames, moment_.date.Month);
}

template <Level level>
void PatternScan<level>::PutYear(std::size_t run) {
  const unsigned year = moment_.date.Year;
  if (run <= 2) return out_.PutNumber(year % 100, 2);
  out_.PutNumber(year, 4);
}

template <Level level>
void PatternScan<level>::PutHour(std::size_t run) {
  twelveHours_ = twelveHours_ || NoonMarkerAhead(Rest());
  unsigned hour = moment_.Hour();
  if (twelveHours_) hour = hour % 12 == 0 ? 12 : hour % 12;
  out_.PutNumber(hour, std::min(run, std::size_t{2}));
}

template <Level level>
void PatternScan<level>::PutNoonMarkerOrDayName() {
  const std::string_view rest = Rest();
  if (StartsWith(rest, kHalves)) return PutHalf(2);
  if (StartsWith(rest, kInitials)) return PutHalf(1);
  if (StartsWith(rest, kNamedHalves)) {
    twelveHours_ = true;
    at_ += kNamedHalves.size();
    return out_.Put(Afternoon() ? settings_.TimePMString : settings_.TimeAMString);
  }
  const bool longName = StartsWith(rest, "aaaa");
  if (longName || StartsWith(rest, "aaa")) {
    at_ += longName ? 4 : 3;
    return PutName(longName ? settings_.LongDayNames : settings_.ShortDayNames, moment_.WeekDay());
  }
  out_.Put(pattern_[at_++]);
}

// One half of `am/pm` or `a/p`, as spelled in the pattern.
template <Level level>
void PatternScan<level>::PutHalf(std::size_t halfSize) {
  twelveHours_ = true;
  out_.Put(pattern_.substr(at_ + (Afternoon() ? halfSize + 1 : 0), halfSize));
  at_ += 2 * halfSize + 1;
}

template <Level level>
void PatternScan<level>::PutQuoted() {
  const std::size_t start = at_ + 1;
  const std::size_t end = std::min(pattern_.find(pattern_[at_], start), pattern_.size());
  out_.Put(pattern_.substr(start, end - start));
  at_ = std::min(end + 1, pattern_.size());
}

template <Level level>
void PatternScan<level>::PutSeparator(char separator) {
  if (separator != '\0') out_.Put(separator);
  ++at_;
}

// Name 1 .. the number of names; nothing for 0.
template <Level level>
void PatternScan<level>::PutName(std::span<const std::string> names, int number) {
  if (number > 0) out_.Put(names[static_cast<std::size_t>(number) - 1]);
}

template <Level level>
void PatternScan<level>::PutGeneral() {
  if constexpr (level == Level::Expanded) return;
  Expand(settings_.ShortDateFormat);
  if (moment_.time < 1000) return;  // hour, minute and second are all 0
  out_.Put(' ');
  Expand(settings_.LongTimeFormat);
}

template <Level level>
void PatternScan<level>::Expand(std::string_view pattern) {
  if constexpr (level == Level::Given) {
    out_ = PatternScan<Level::Expanded>(pattern, moment_, settings_, out_).Run();
  }
}

Output Print(Buffer& buffer, std::string_view pattern, TDateTime moment,
             const TFormatSettings& settings) {
  const Moment split{calendar::Split(moment)};
  return PatternScan<Level::Given>(pattern.empty() ? "c" : pattern, split, settings, Output(buffer))
      .Run();
}

}  // namespace

void AppendFormatDateTime(std::string& out, std::string_view pattern, TDateTime moment,
                          const TFormatSettings& settings) {
  Buffer buffer;
  out.append(Print(buffer, pattern, moment, settings).Text());
}

std::string FormatDateTime(std::string_view pattern, TDateTime moment,
                           const TFormatSettings& settings) {
  Buffer buffer;
  return std::string(Print(buffer, pattern, moment, settings).Text());
}

}  // namespace kvshare::inline rtl
