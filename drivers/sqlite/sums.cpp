// SUM, TOTAL and AVG that add the decimals for which the doubles stand.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "drivers/common/valuetexts.h"
#include "drivers/sqlite/decimals.h"
#include "drivers/sqlite/handles.h"
#include "kvshare/rtl/types.h"

namespace kvshare::drivers::sqlite {

namespace {

// A sum is kept at the most decimals that any of its values has. One that leaves 128 bits, or that
// has a value that stands for no decimal, goes on as a sum of reals.
constexpr int kMostPlaces = 24;
constexpr std::size_t kMostDigits = 36;

std::string Written(Int128 value, int places) {
  UInt128 rest = value < 0 ? -static_cast<UInt128>(value) : static_cast<UInt128>(value);
  std::string text;
  for (int i = 0; rest != 0 || i <= places; ++i) {
    if (i == places && places != 0) text.push_back('.');
    text.push_back(static_cast<char>('0' + static_cast<int>(rest % 10)));
    rest /= 10;
  }
  if (value < 0) text.push_back('-');
  std::ranges::reverse(text);
  return text;
}

double Nearest(const std::string& decimal) {
  double real = 0;
  std::from_chars(decimal.data(), decimal.data() + decimal.size(), real);
  return real;
}

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
      AddDigits(TextOf(value), direction);
    } else {
      anyReal_ = true;
      AddReal(sqlite3_value_double(value), direction);
    }
  }

  void Give(sqlite3_context* context) const {
    if (count_ == 0) return sqlite3_result_null(context);
    if (!exact_ || anyReal_) return sqlite3_result_double(context, Real());
    if (anyText_) {
      const std::string text = Written(total_, places_);
      return sqlite3_result_text(context, text.data(), static_cast<int>(text.size()),
                                 SQLITE_TRANSIENT);
    }
    if (total_ > INT64_MAX || total_ < INT64_MIN) {
      return sqlite3_result_error(context, "integer overflow", -1);
    }
    sqlite3_result_int64(context, static_cast<std::int64_t>(total_));
  }

  void GiveReal(sqlite3_context* context) const { sqlite3_result_double(context, Real()); }

  void GiveAverage(sqlite3_context* context) const {
    if (count_ == 0) return sqlite3_result_null(context);
    sqlite3_result_double(context, exact_ ? Average() : real_ / static_cast<double>(count_));
  }

 private:
  void AddReal(double value, int direction) {
    if (const auto scaled = TenThousandthsOf(value)) return AddScaled(*scaled, 4, direction);
    if (!std::isfinite(value)) {
      exact_ = false;
    } else {
      AddDigits(DecimalOf(value), direction);
    }
  }

  void AddDigits(std::string_view text, int direction) {
    const auto digits = ReadDigits(text);
    const auto places = digits ? static_cast<int>(digits->decimals.size()) : 0;
    constexpr std::size_t kMostWhole = 18;
    if (!digits || places > kMostPlaces || digits->whole.size() > kMostWhole ||
        digits->whole.size() + digits->decimals.size() > kMostDigits) {
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

  double Real() const { return exact_ ? Nearest(Written(total_, places_)) : real_; }

  // Divided to many more digits than a real has; one more digit stands for a rest.
  double Average() const {
    constexpr Int128 kRoom = INT64_MAX * Int128{INT64_MAX / 100};
    Int128 total = total_;
    int places = places_;
    for (; total != 0 && total < kRoom && total > -kRoom; ++places) total *= 10;
    std::string text = Written(total / count_, places);
    if (total % count_ != 0) text += places > 0 ? "1" : ".1";
    return Nearest(text);
  }

  Int128 total_ = 0;
  double real_ = 0;
  std::int64_t count_ = 0;
  int places_ = 0;
  bool exact_ = true;
  bool anyText_ = false;
  bool anyReal_ = false;
};

// The server gives each sum its memory, filled with zeros, and takes it back; a Sum begins there at
// its first value, so that its mark shows which one has seen none.
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

// An error of memory must not pass through the server.
template <typename Action>
void Guarded(sqlite3_context* context, Action action) {
  try {
    action();
  } catch (const std::bad_alloc&) {
    sqlite3_result_error_nomem(context);
  }
}

template <int Direction>
void StepSum(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
  Sum* sum = SumAt(context, true);
  if (sum == nullptr) return sqlite3_result_error_nomem(context);
  Guarded(context, [&] { sum->Add(values[0], Direction); });
}

template <void (Sum::*Give)(sqlite3_context*) const>
void GiveOf(sqlite3_context* context) {
  static constexpr Sum kNone;
  const Sum* sum = SumAt(context, false);
  Guarded(context, [&] { ((sum == nullptr ? kNone : *sum).*Give)(context); });
}

}  // namespace

void AddSums(sqlite3* database) {
  const auto add = [database](const char* name, void (*give)(sqlite3_context*)) {
    constexpr int kFlags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
    const int done = sqlite3_create_window_function(database, name, 1, kFlags, nullptr, StepSum<1>,
                                                    give, give, StepSum<-1>, nullptr);
    if (done != SQLITE_OK) Refuse(database);
  };
  add("sum", GiveOf<&Sum::Give>);
  add("total", GiveOf<&Sum::GiveReal>);
  add("avg", GiveOf<&Sum::GiveAverage>);
}

}  // namespace kvshare::drivers::sqlite
