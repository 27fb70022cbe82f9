// Typed dates and stamps read back.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <optional>

#include "kvshare/dates/date.h"
#include "kvshare/rtl/convert.h"
#include "kvshare/rtl/strutils.h"
#include "kvshare/text/strings.h"

namespace kvshare {

namespace {

// The three parts between the first two separators.
struct Parts {
  std::string_view first, second, third;
};

std::optional<Parts> SplitAt(std::string_view text, char separator) {
  const std::size_t one = text.find(separator);
  if (one == std::string_view::npos) return std::nullopt;
  const std::size_t two = text.find(separator, one + 1);
  if (two == std::string_view::npos) return std::nullopt;
  return Parts{text.substr(0, one), text.substr(one + 1, two - one - 1), text.substr(two + 1)};
}

struct Numbers {
  std::int32_t year = 0;
  std::int32_t month = 0;
  std::int32_t day = 0;
};

// TryStrToInt, at once for the digits that nearly every part is made of.
bool TryReadPart(std::string_view part, std::int32_t& number) {
  if (part.empty() || part.size() > 4) return TryStrToInt(part, number);
  std::int32_t value = 0;
  for (const char c : part) {
    if (c < '0' || c > '9') return TryStrToInt(part, number);
    value = value * 10 + (c - '0');
  }
  number = value;
  return true;
}

std::optional<Numbers> ReadNumbers(std::string_view year, std::string_view month,
                                   std::string_view day) {
  Numbers numbers;
  if (!TryReadPart(day, numbers.day) || !TryReadPart(month, numbers.month) ||
      !TryReadPart(year, numbers.year)) {
    return std::nullopt;
  }
  return numbers;
}

// The text `dd/mm/yyyy`, all digits, in which most dates are typed: no part needs to be looked for.
std::optional<Numbers> ReadUsualForm(std::string_view text) {
  if (text.size() != 10 || text[2] != '/' || text[5] != '/') return std::nullopt;
  std::array<unsigned, 10> digit;
  unsigned highest = 0;
  for (const std::size_t i : {0U, 1U, 3U, 4U, 6U, 7U, 8U, 9U}) {
    digit[i] = static_cast<unsigned char>(text[i]) - unsigned{'0'};  // above 9 for no digit
    highest = std::max(highest, digit[i]);
  }
  if (highest > 9) return std::nullopt;
  const unsigned year = digit[6] * 1000 + digit[7] * 100 + digit[8] * 10 + digit[9];
  return Numbers{static_cast<std::int32_t>(year),
                 static_cast<std::int32_t>(digit[3] * 10 + digit[4]),
                 static_cast<std::int32_t>(digit[0] * 10 + digit[1])};
}

std::optional<Numbers> ReadTyped(std::string_view text) {
  const bool slashes = text.find('/') != std::string_view::npos;
  const std::optional<Parts> parts = SplitAt(text, slashes ? '/' : '-');
  if (!parts) return std::nullopt;
  const bool dayFirst = parts->first.size() == 2;
  return dayFirst ? ReadNumbers(parts->third, parts->second, parts->first)
                  : ReadNumbers(parts->first, parts->second, parts->third);
}

// The year stands first; the leftmost bad part is the one that an error tells.
TDateTime DateAt(std::string_view stamp, int month, int day) {
  const int y = StrToInt(Copy(stamp, 1, 4));
  const int m = StrToInt(Copy(stamp, month, 2));
  return EncodeDate(y, m, StrToInt(Copy(stamp, day, 2)));
}

}  // namespace

bool TKovraDate::StrToKovraDate(std::string_view Text, Word YearOffset, TDateTime& D) {
  std::optional<Numbers> numbers = ReadUsualForm(Text);
  if (!numbers) numbers = ReadTyped(Text);
  if (!numbers) return false;
  auto year = static_cast<Word>(numbers->year);
  if (year < 100) year = static_cast<Word>(year + (YearOffset != 0 ? 2500 : 2000));
  year = static_cast<Word>(year - YearOffset);
  return TryEncodeDate(year, numbers->month, numbers->day, D);
}

bool TKovraDate::IsDate(std::string_view Text, Word YearOffset) {
  TDateTime date;
  return StrToKovraDate(Text, YearOffset, date);
}

TDateTime TKovraDate::ActualDate(std::string_view Text, Word YearOffset) {
  TDateTime date;
  return StrToKovraDate(Text, YearOffset, date) ? date : Date();
}

bool TKovraDate::ForceStrToKovraDateAsOf(std::string_view Text, int CurrentYear, TDateTime& D) {
  const std::optional<Parts> parts = SplitAt(Text, '/');
  if (!parts) return false;
  const auto numbers = ReadNumbers(parts->third, parts->second, parts->first);
  if (!numbers) return false;
  std::int64_t year = numbers->year;
  const std::int64_t distance = std::abs(year - CurrentYear);
  if (distance > 1000) {
    year -= std::int64_t{2} * kBuddhistEraOffset;
  } else if (distance > 100) {
    year -= kBuddhistEraOffset;
  }
  if (year < 1 || year > 9999) return false;
  return TryEncodeDate(static_cast<int>(year), numbers->month, numbers->day, D);
}

bool TKovraDate::ForceStrToKovraDate(std::string_view Text, TDateTime& D) {
  return ForceStrToKovraDateAsOf(Text, DecodeDate(Date()).Year, D);
}

int TKovraDate::BStrPos(std::string_view SubStr, std::string_view S, int N) {
  return TKovraString::BStrPos(SubStr, S, N);
}

TDateTime TKovraDate::KovraStrToDate(std::string_view S) {
  return DateAt(S, 5, 7);
}

TDateTime TKovraDate::KovraStrToTime(std::string_view S) {
  const int hour = StrToInt(Copy(S, 9, 2));
  return EncodeTime(hour, StrToInt(Copy(S, 11, 2)), 0, 0);
}

TDateTime TKovraDate::KovraStrToDateTime(std::string_view S) {
  const TDateTime date = KovraStrToDate(S);
  return JoinDateTime(date, KovraStrToTime(S));
}

TDateTime TKovraDate::yyyymmddToDate(std::string_view S) {
  return DateAt(S, 6, 9);
}

}  // namespace kvshare
