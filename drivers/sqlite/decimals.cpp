#include "drivers/sqlite/decimals.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <compare>
#include <cstdint>

#include "drivers/common/valuetexts.h"
#include "drivers/sqlite/handles.h"
#include "kvshare/rtl/ascii.h"

namespace kvshare::drivers::sqlite {

namespace {

int SignOf(const DecimalText& number) {
  if (number.negative) return -1;
  return number.whole.empty() && number.decimals.empty() ? 0 : 1;
}

int CompareMagnitudes(const DecimalText& a, const DecimalText& b) {
  if (a.whole.size() != b.whole.size()) return a.whole.size() < b.whole.size() ? -1 : 1;
  const int whole = a.whole.compare(b.whole);
  return whole != 0 ? whole : a.decimals.compare(b.decimals);
}

int Compare(std::string_view a, std::string_view b) {
  const auto left = ReadDigits(a);
  const auto right = ReadDigits(b);
  if (!left || !right) {
    if (left || right) return left ? 1 : -1;
    return a.compare(b);
  }
  if (SignOf(*left) != SignOf(*right)) return SignOf(*left) - SignOf(*right);
  const int order = CompareMagnitudes(*left, *right);
  return left->negative ? -order : order;
}

int CollateDecimals(void* /*unused*/, int sizeA, const void* a, int sizeB, const void* b) {
  return Compare({static_cast<const char*>(a), static_cast<std::size_t>(sizeA)},
                 {static_cast<const char*>(b), static_cast<std::size_t>(sizeB)});
}

// The same text for the same number.
std::string Shortest(const DecimalText& digits) {
  std::string text = digits.negative ? "-" : "";
  text.append(digits.whole.empty() ? "0" : digits.whole);
  if (!digits.decimals.empty()) text.append(".").append(digits.decimals);
  return text;
}

// The decimal that a value stands for; nothing for what stands for none.
std::optional<std::string> DecimalOf(sqlite3_value* value) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
      return std::to_string(sqlite3_value_int64(value));
    case SQLITE_FLOAT: {
      const double real = sqlite3_value_double(value);
      return std::isfinite(real) ? std::optional(drivers::DecimalOf(real)) : std::nullopt;
    }
    case SQLITE_TEXT:
      if (const auto digits = ReadDigits(TextOf(value))) return Shortest(*digits);
      break;
    default:
      break;
  }
  return std::nullopt;
}

void GiveDecimal(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
  const std::optional<std::string> decimal = DecimalOf(values[0]);
  if (!decimal) return sqlite3_result_value(context, values[0]);
  sqlite3_result_text(context, decimal->data(), static_cast<int>(decimal->size()),
                      SQLITE_TRANSIENT);
}

void AddOne(std::string& digits) {
  for (std::size_t at = digits.size(); at-- > 0;) {
    if (!IsDigit(digits[at])) continue;
    if (digits[at]++ != '9') return;
    digits[at] = '0';
  }
  digits.insert(digits.find_first_of("0123456789"), 1, '1');
}

// A decimal cut to so many digits behind its point.
std::string Rounded(std::string decimal, std::size_t places) {
  const std::size_t point = decimal.find('.');
  if (point == std::string::npos || decimal.size() - point - 1 <= places) return decimal;
  const bool up = decimal[point + 1 + places] >= '5';
  decimal.resize(places == 0 ? point : point + 1 + places);
  if (up) AddOne(decimal);
  return decimal;
}

void GiveRounded(sqlite3_context* context, int count, sqlite3_value** values) {
  constexpr int kMostPlaces = 30;
  if (sqlite3_value_type(values[0]) == SQLITE_NULL) return;
  if (count == 2 && sqlite3_value_type(values[1]) == SQLITE_NULL) return;
  const int places = count == 2 ? std::clamp(sqlite3_value_int(values[1]), 0, kMostPlaces) : 0;
  constexpr double kSixteenDigits = 1e15;
  double real = sqlite3_value_double(values[0]);
  if (std::fabs(real) >= kSixteenDigits) {
    if (places == 0) real = std::round(real);
  } else if (const std::optional<std::string> decimal = DecimalOf(values[0])) {
    const std::string rounded = Rounded(*decimal, static_cast<std::size_t>(places));
    std::from_chars(rounded.data(), rounded.data() + rounded.size(), real);
  }
  sqlite3_result_double(context, real);
}

// An error of memory must not pass through the server.
template <void (*Function)(sqlite3_context*, int, sqlite3_value**)>
void Guarded(sqlite3_context* context, int count, sqlite3_value** values) {
  try {
    Function(context, count, values);
  } catch (const std::bad_alloc&) {
    sqlite3_result_error_nomem(context);
  }
}

}  // namespace

std::optional<DecimalText> ReadDigits(std::string_view text) {
  const auto digits = SplitDecimal(text, /*plus=*/true);
  return digits ? std::optional(WithoutZeros(*digits)) : std::nullopt;
}

std::string_view TextOf(sqlite3_value* value) {
  const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
  return {text, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

void AddDecimals(sqlite3* database) {
  constexpr int kFlags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
  const auto add = [&](const char* name, int arguments, auto* function) {
    const int done = sqlite3_create_function_v2(database, name, arguments, kFlags, nullptr,
                                                function, nullptr, nullptr, nullptr);
    if (done != SQLITE_OK) Refuse(database);
  };
  if (sqlite3_create_collation(database, "DECIMAL", SQLITE_UTF8, nullptr, CollateDecimals) !=
      SQLITE_OK) {
    Refuse(database);
  }
  add("round", 1, Guarded<GiveRounded>);
  add("round", 2, Guarded<GiveRounded>);
  add("kvshare_decimal", 1, Guarded<GiveDecimal>);
}

}  // namespace kvshare::drivers::sqlite
