#include "drivers/sqlite/moments.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

#include "drivers/sqlite/handles.h"
#include "kvshare/rtl/ascii.h"

namespace kvshare::drivers::sqlite {

namespace {

// Whether the text begins with digits and marks in these places: `0` is a digit.
bool Fits(std::string_view text, std::string_view pattern) {
  return text.size() >= pattern.size() &&
         std::ranges::equal(text.substr(0, pattern.size()), pattern, [](char c, char wanted) {
           return wanted == '0' ? IsDigit(c) : c == wanted;
         });
}

struct Moment {
  enum class Kind : std::uint8_t { None, Day, Time };
  Kind kind = Kind::None;
  std::string_view day;
  std::string_view clock = "00:00:00";
  std::string_view fraction;
};

// hh:mm:ss[.f..] to the end of the text.
bool TakeTime(std::string_view text, Moment& moment) {
  if (!Fits(text, "00:00:00")) return false;
  std::string_view rest = text.substr(8);
  if (rest.starts_with('.')) rest.remove_prefix(1);
  const bool digits = AreDigits(rest);
  if (!digits || (rest.empty() && text.size() > 8)) return false;
  moment.clock = text.substr(0, 8);
  moment.fraction = rest.substr(0, rest.find_last_not_of('0') + 1);
  return true;
}

Moment TakeApart(std::string_view text) {
  Moment moment;
  if (TakeTime(text, moment)) {
    moment.kind = Moment::Kind::Time;
  } else if (Fits(text, "0000-00-00")) {
    moment.day = text.substr(0, 10);
    const std::string_view rest = text.substr(10);
    const bool joined = rest.starts_with(' ') || rest.starts_with('T');
    if (rest.empty() || (joined && TakeTime(rest.substr(1), moment))) {
      moment.kind = Moment::Kind::Day;
    }
  }
  return moment;
}

int Compare(std::string_view a, std::string_view b) {
  const Moment left = TakeApart(a);
  const Moment right = TakeApart(b);
  if (left.kind != right.kind) return left.kind < right.kind ? -1 : 1;
  if (left.kind == Moment::Kind::None) return a.compare(b);
  if (const int days = left.day.compare(right.day); days != 0) return days;
  if (const int clocks = left.clock.compare(right.clock); clocks != 0) return clocks;
  return left.fraction.compare(right.fraction);
}

int CollateMoments(void* /*unused*/, int sizeA, const void* a, int sizeB, const void* b) {
  return Compare({static_cast<const char*>(a), static_cast<std::size_t>(sizeA)},
                 {static_cast<const char*>(b), static_cast<std::size_t>(sizeB)});
}

}  // namespace

void AddMoments(sqlite3* database) {
  const int done =
      sqlite3_create_collation(database, "MOMENT", SQLITE_UTF8, nullptr, CollateMoments);
  if (done != SQLITE_OK) Refuse(database);
}

}  // namespace kvshare::drivers::sqlite
