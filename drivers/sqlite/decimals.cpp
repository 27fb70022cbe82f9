#include "drivers/sqlite/decimals.h"

#include <algorithm>
#include <compare>
#include <cstdint>
#include <new>
#include <optional>
#include <string>
#include <string_view>

#include "drivers/sqlite/handles.h"
#include "kvshare/rtl/types.h"

namespace kvshare::drivers::sqlite {

namespace {

constexpr bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// [+-]digits[.digits] without the zeros that say nothing.
struct Digits {
  bool negative = false;
  std::string_view whole;
  std::string_view decimals;

  bool IsZero() const { return whole.empty() && decimals.empty(); }
  int Sign() const { return IsZero() ? 0 : negative ? -1 : 1; }
};

std::optional<Digits> Read(std::string_view text) {
  Digits digits;
  if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
    digits.negative = text[0] == '-';
    text.remove_prefix(1);
  }
  const std::size_t point = text.find('.');
  std::string_view whole = text.substr(0, point);
  std::string_view decimals = point == std::string_view::npos ? "" : text.substr(point + 1);
  if ((whole.empty() && decimals.empty()) || !std::ranges::all_of(whole, IsDigit) ||
      !std::ranges::all_of(decimals, IsDigit)) {
    return std::nullopt;
  }
  whole.remove_prefix(std::min(whole.find_first_not_of('0'), whole.size()));
  digits.whole = whole;
  digits.decimals = decimals.substr(0, decimals.find_last_not_of('0') + 1);
  return digits;
}

int CompareMagnitudes(const Digits& a, const Digits& b) {
  if (a.whole.size() != b.whole.size()) return a.whole.size() < b.whole.size() ? -1 : 1;
  const int whole = a.whole.compare(b.whole);
  return whole != 0 ? whole : a.decimals.compare(b.decimals);
}

int Compare(std::string_view a, std::string_view b) {
  const auto left = Read(a);
  const auto right = Read(b);
  if (!left || !right) {
    if (left || right) return left ? 1 : -1;
    return a.compare(b);
  }
  if (left->Sign() != right->Sign()) return left->Sign() - right->Sign();
  const int order = CompareMagnitudes(*left, *right);
  return left->Sign() < 0 ? -order : order;
}

int CollateDecimals(void* /*unused*/, int sizeA, const void* a, int sizeB, const void* b) {
  return Compare({static_cast<const char*>(a), static_cast<std::size_t>(sizeA)},
                 {static_cast<const char*>(b), static_cast<std::size_t>(sizeB)});
}

// A sum of texts is kept at the most decimals that any of them has. A sum that leaves 128 bits, or
// that mixes in reals, goes on as a real.
constexpr int kMostPlaces = 18;

class Sum {
 public:
  void Add(sqlite3_value* value, int direction) {
    const int type = sqlite3_value_type(value);
    if (type == SQLITE_NULL) return;
    count_ += direction;
    real_ += direction * sqlite3_value_double(value);
    if (type == SQLITE_INTEGER) {
      AddScaled(sqlite3_value_int64(value), 0, direction);
    } else if (type == SQLITE_TEXT) {
      anyText_ = true;
      AddText({reinterpret_cast<const char*>(sqlite3_value_text(value)),
               static_cast<std::size_t>(sqlite3_value_bytes(value))},
              direction);
    } else {
      exact_ = false;
    }
  }

  void Give(sqlite3_context* context) const {
    if (count_ == 0) return sqlite3_result_null(context);
    if (!exact_) return sqlite3_result_double(context, real_);
    if (anyText_) {
      const std::string text = Written();
      return sqlite3_result_text(context, text.data(), static_cast<int>(text.size()),
                                 SQLITE_TRANSIENT);
    }
    if (total_ > INT64_MAX || total_ < INT64_MIN) {
      return sqlite3_result_error(context, "integer overflow", -1);
    }
    sqlite3_result_int64(context, static_cast<std::int64_t>(total_));
  }

 private:
  void AddText(std::string_view text, int direction) {
    const auto digits = Read(text);
    const auto places = digits ? static_cast<int>(digits->decimals.size()) : 0;
    if (!digits || places > kMostPlaces || digits->whole.size() > 18) {
      exact_ = false;
      return;
    }
    Int128 value = 0;
    for (const char c : digits->whole) value = value * 10 + (c - '0');
    for (const char c : digits->decimals) value = value * 10 + (c - '0');
    AddScaled(digits->negative ? -value : value, places, direction);
  }

  void AddScaled(Int128 value, int places, int direction) {
    if (!exact_) return;
    for (; places_ < places; ++places_) Multiply(total_);
    for (; places < places_; ++places) Multiply(value);
    if (__builtin_add_overflow(total_, direction * value, &total_)) exact_ = false;
  }

  void Multiply(Int128& value) {
    if (__builtin_mul_overflow(value, Int128{10}, &value)) exact_ = false;
  }

  std::string Written() const {
    UInt128 rest = total_ < 0 ? -static_cast<UInt128>(total_) : static_cast<UInt128>(total_);
    std::string text;
    for (int i = 0; rest != 0 || i <= places_; ++i) {
      if (i == places_ && places_ != 0) text.push_back('.');
      text.push_back(static_cast<char>('0' + static_cast<int>(rest % 10)));
      rest /= 10;
    }
    if (total_ < 0) text.push_back('-');
    std::ranges::reverse(text);
    return text;
  }

  Int128 total_ = 0;
  double real_ = 0;
  std::int64_t count_ = 0;
  int places_ = 0;
  bool exact_ = true;
  bool anyText_ = false;
};

// The server gives each sum its memory, filled with zeros, and takes it back; a Sum begins there at
// its first value, so that one which has seen none is told by its mark.
struct Place {
  bool begun;
  alignas(Sum) std::byte memory[sizeof(Sum)];
};
static_assert(std::is_trivially_destructible_v<Sum>);

Sum* SumAt(sqlite3_context* context, bool begin) {
  void* memory = sqlite3_aggregate_context(context, begin ? sizeof(Place) + alignof(Sum) : 0);
  if (memory == nullptr) return nullptr;
  // The server aligns to 8 bytes.
  std::size_t room = sizeof(Place) + alignof(Sum);
  auto* place = static_cast<Place*>(std::align(alignof(Place), sizeof(Place), memory, room));
  if (!place->begun) {
    new (place->memory) Sum;
    place->begun = true;
  }
  return std::launder(reinterpret_cast<Sum*>(place->memory));
}

template <int Direction>
void StepSum(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
  Sum* sum = SumAt(context, true);
  if (sum == nullptr) return sqlite3_result_error_nomem(context);
  sum->Add(values[0], Direction);
}

void GiveSum(sqlite3_context* context) {
  const Sum* sum = SumAt(context, false);
  sum == nullptr ? sqlite3_result_null(context) : sum->Give(context);
}

}  // namespace

void AddDecimals(sqlite3* database) {
  const bool done = sqlite3_create_collation(database, "DECIMAL", SQLITE_UTF8, nullptr,
                                             CollateDecimals) == SQLITE_OK &&
                    sqlite3_create_window_function(
                        database, "sum", 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS,
                        nullptr, StepSum<1>, GiveSum, GiveSum, StepSum<-1>, nullptr) == SQLITE_OK;
  if (!done) Refuse(database);
}

}  // namespace kvshare::drivers::sqlite
