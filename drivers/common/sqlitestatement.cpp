#include "drivers/common/sqlitestatement.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>
#include <variant>

namespace kvshare::drivers::sqlite {

namespace {

using data::DriverError;
using data::ParameterValue;

constexpr std::size_t kForms = 5;  // of one moment

constexpr std::string_view kMidnight = "00:00:00";

// A moment taken apart; of a time of day `day` is empty.
struct Taken {
  std::string_view day;
  std::string_view clock = kMidnight;
  std::string_view fraction;  // without zeros at its end

  bool IsDay() const { return !day.empty() && clock == kMidnight && fraction.empty(); }

  // hh:mm:ss[.fff]
  std::string Short() const {
    std::string text(clock);
    if (!fraction.empty()) text.append(".").append(fraction);
    return text;
  }
  std::string Long() const {
    constexpr std::size_t kMilliseconds = 3;
    std::string text = std::string(clock).append(".").append(fraction);
    if (fraction.size() < kMilliseconds) text.append(kMilliseconds - fraction.size(), '0');
    return text;
  }
};

Taken TakeApart(const data::Moment& moment) {
  constexpr std::size_t kDay = 10;
  constexpr std::size_t kClock = 8;
  std::string_view text = moment.text;
  Taken taken;
  if (moment.kind != data::ColumnKind::Time) {
    taken.day = text.substr(0, kDay);
    text.remove_prefix(std::min(text.size(), kDay + 1));
    if (text.empty()) return taken;
  }
  taken.clock = text.substr(0, kClock);
  text.remove_prefix(std::min(text.size(), kClock + 1));
  taken.fraction = text.substr(0, text.find_last_not_of('0') + 1);
  return taken;
}

std::array<std::string, kForms> FormsOf(const Taken& taken) {
  if (taken.day.empty()) {
    return {taken.Short(), taken.Long(), taken.Short(), taken.Short(), taken.Short()};
  }
  const std::string blank = std::string(taken.day) + " ";
  const std::string letter = std::string(taken.day) + "T";
  return {blank + taken.Short(), blank + taken.Long(), letter + taken.Short(),
          letter + taken.Long(), taken.IsDay() ? std::string(taken.day) : blank + taken.Short()};
}

// Those between the zeros at both ends.
std::size_t SignificantDigits(std::string_view digits) {
  std::size_t count = 0;
  std::size_t zeros = 0;
  for (const char c : digits) {
    if (c < '0' || c > '9' || (c == '0' && count == 0)) continue;
    zeros = c == '0' ? zeros + 1 : 0;
    ++count;
  }
  return count - zeros;
}

double RealOf(const std::string& digits, Amounts amounts) {
  constexpr std::size_t kMost = 15;
  double real = 0;
  const char* end = digits.data() + digits.size();
  const auto [rest, error] = std::from_chars(digits.data(), end, real, std::chars_format::fixed);
  if (error != std::errc() || rest != end) throw DriverError("\"" + digits + "\" is no amount");
  if (SignificantDigits(digits) > kMost) {
    throw DriverError(digits +
                      " has more than 15 digits, and the server would keep a real of it. Declare"
                      " the column DECIMAL_TEXT, and give the amount as a text");
  }
  // The server writes these with an exponent.
  const bool plain = real == 0 || (std::fabs(real) >= 1e-4 && std::fabs(real) < 1e15);
  if (amounts == Amounts::Both && !plain) {
    throw DriverError(digits + " cannot go into columns of numbers and of DECIMAL_TEXT at once");
  }
  return real;
}

}  // namespace

ValueClass ClassOf(const ParameterValue& value) {
  if (std::holds_alternative<data::Decimal>(value)) return ValueClass::Amount;
  return std::holds_alternative<data::Moment>(value) ? ValueClass::Moment : ValueClass::Plain;
}

MarkedStatement::MarkedStatement(const data::StatementParts& parts,
                                 std::span<const ValueClass> classes, Manner manner)
    : text_(parts.texts.front()), manner_(manner) {
  const std::vector<Place> places = PlacesOf(parts);
  for (std::size_t i = 0; i < places.size(); ++i) {
    const std::size_t parameter = parts.places[i];
    const ValueClass known = classes[parameter];
    const bool exact = manner.collations && manner.amounts == Amounts::Texts;
    if (known == ValueClass::Moment) {
      AddMoment(parameter, places[i], text_.size() - parts.texts[i].size());
    } else if (known == ValueClass::Amount && exact) {
      AddCollated(parameter, "DECIMAL");
    } else {
      AddSlot(parameter);
    }
    text_ += parts.texts[i + 1];
  }
}

void MarkedStatement::AddSlot(std::size_t parameter, Form form, std::size_t which) {
  text_ += '?';
  slots_.push_back({parameter, form, which});
}

void MarkedStatement::AddEach(std::size_t parameter) {
  for (std::size_t i = 0; i < kForms; ++i) {
    if (i != 0) text_ += ", ";
    AddSlot(parameter, Form::Any, i);
  }
}

void MarkedStatement::AddCollated(std::size_t parameter, const char* collation) {
  text_ += '(';
  AddSlot(parameter);
  text_.append(" COLLATE ").append(collation).append(")");
}

// `before` is where the text before the place begins.
void MarkedStatement::AddMoment(std::size_t parameter, const Place& place, std::size_t before) {
  switch (place.kind) {
    case PlaceKind::AtLeast:
      return AddSlot(parameter, Form::First);
    case PlaceKind::Above:
      return AddSlot(parameter, Form::Last);
    case PlaceKind::Listed:
      return AddEach(parameter);
    case PlaceKind::Equal:
    case PlaceKind::Unequal:
      text_.resize(before + place.operatorAt);
      text_ += place.kind == PlaceKind::Equal ? " IN (" : " NOT IN (";
      AddEach(parameter);
      text_ += ')';
      return;
    case PlaceKind::Stored:
      return AddSlot(parameter);
    case PlaceKind::Other:
      return manner_.collations ? AddCollated(parameter, "MOMENT") : AddSlot(parameter);
  }
}

std::string MarkedStatement::TextOf(const data::Moment& moment, const Slot& slot) {
  const Taken taken = TakeApart(moment);
  const std::string before = taken.day.empty() ? "" : std::string(taken.day) + " ";
  switch (slot.form) {
    case Form::First:
      return taken.IsDay() ? std::string(taken.day) : before + taken.Short();
    case Form::Last:
      return before + taken.Long();
    case Form::Any:
      return FormsOf(taken)[slot.which];
    case Form::AsGiven:
      break;
  }
  return moment.text;
}

const ParameterValue& MarkedStatement::Value(std::size_t slot,
                                             std::span<const ParameterValue> values,
                                             ParameterValue& made) const {
  const ParameterValue& value = values[slots_[slot].parameter];
  if (const auto* moment = std::get_if<data::Moment>(&value)) {
    return made = TextOf(*moment, slots_[slot]);
  }
  if (const auto* amount = std::get_if<data::Decimal>(&value)) {
    if (manner_.amounts == Amounts::Texts) return made = amount->digits;
    return made = RealOf(amount->digits, manner_.amounts);
  }
  return value;
}

}  // namespace kvshare::drivers::sqlite
